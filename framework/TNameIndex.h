#pragma once

#include <deque>
#include <memory>
#include <string_view>
#include <unordered_map>

#include <List.h>

namespace merion {

//! Whether two names are the same but for the case of ASCII letters.
bool is_same_name(std::string_view a, std::string_view b);

//! How two names are ordered in lists, whatever the case of ASCII letters: below 0, 0 or above.
int compare_names(std::string_view a, std::string_view b);

/*!	Finds the items of a list by name, whatever the case of ASCII letters; of several of one name, the first. It looks
	at the list itself while that is short, and catches up with what was added at its end when it is next asked.
	Every other change must be told. The list and the items' names must stay where they are.
	Thread: not locked; one thread at a time. */
class TNameIndex {
public:
	using NameOf = std::string_view (*)(const void* item);

	TNameIndex(const BList& list, NameOf nameOf) : fList(list), fNameOf(nameOf) { }

	void* Find(std::string_view name);
	//! Before the item, the first of its name, leaves the list.
	void FirstWillGo(void* item);
	//! The list changed in another way, or another name.
	void Forget();

private:
	struct NameHash {
		size_t operator()(std::string_view name) const;
	};
	struct NameEqual {
		bool operator()(std::string_view a, std::string_view b) const { return is_same_name(a, b); }
	};
	struct Items {
		void* first;
		std::unique_ptr<std::deque<void*>> others; // in the list's order; none for most
	};

	void CatchUp();

	const BList& fList;
	const NameOf fNameOf;
	int32 fIndexed = 0; // as many of the list's items are in the table
	std::unordered_map<std::string_view, Items, NameHash, NameEqual> fItems;
};

} // namespace merion
