#include "framework/TNameIndex.h"

#include <algorithm>

namespace merion {

constexpr int32 kShortList = 8;

static inline unsigned char
upper_case(char c)
{
	const unsigned char byte = static_cast<unsigned char>(c);
	return byte >= 'a' && byte <= 'z' ? byte - 'a' + 'A' : byte;
}

bool
is_same_name(std::string_view a, std::string_view b)
{
	return std::equal(a.begin(), a.end(), b.begin(), b.end(),
		[](char x, char y) { return upper_case(x) == upper_case(y); });
}

int
compare_names(std::string_view a, std::string_view b)
{
	const auto [x, y] = std::mismatch(a.begin(), a.end(), b.begin(), b.end(),
		[](char first, char second) { return upper_case(first) == upper_case(second); });
	if (x == a.end() || y == b.end())
		return (x != a.end()) - (y != b.end());
	return upper_case(*x) - upper_case(*y);
}

size_t
TNameIndex::NameHash::operator()(std::string_view name) const
{
	uint64 hash = 0xcbf29ce484222325; // FNV-1a
	for (char c : name)
		hash = (hash ^ upper_case(c)) * 0x100000001b3;
	return hash ^ hash >> 32;
}

void*
TNameIndex::Find(std::string_view name)
{
	if (fIndexed == 0 && fList.CountItems() <= kShortList) {
		for (int32 i = 0; i < fList.CountItems(); i++) {
			if (is_same_name(fNameOf(fList.ItemAtFast(i)), name))
				return fList.ItemAtFast(i);
		}
		return nullptr;
	}
	CatchUp();
	const auto found = fItems.find(name);
	return found != fItems.end() ? found->second.first : nullptr;
}

void
TNameIndex::CatchUp()
{
	if (fIndexed == 0)
		fItems.reserve(fList.CountItems());
	for (; fIndexed < fList.CountItems(); fIndexed++) {
		void* item = fList.ItemAtFast(fIndexed);
		const auto [place, isNew] = fItems.try_emplace(fNameOf(item), Items{item, nullptr});
		if (isNew)
			continue;
		std::unique_ptr<std::deque<void*>>& others = place->second.others;
		if (others == nullptr)
			others = std::make_unique<std::deque<void*>>();
		others->push_back(item);
	}
}

void
TNameIndex::FirstWillGo(void* item)
{
	if (fIndexed == 0)
		return;
	CatchUp();
	auto node = fItems.extract(fNameOf(item)); // its key is the text of the item that goes
	fIndexed--;
	if (node.empty() || node.mapped().others == nullptr)
		return;
	std::deque<void*>& others = *node.mapped().others;
	node.mapped().first = others.front();
	others.pop_front();
	node.key() = fNameOf(node.mapped().first);
	if (others.empty())
		node.mapped().others.reset();
	fItems.insert(std::move(node));
}

void
TNameIndex::Forget()
{
	fItems.clear();
	fIndexed = 0;
}

} // namespace merion
