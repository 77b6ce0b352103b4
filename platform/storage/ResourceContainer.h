#pragma once

#include <memory>
#include <string>
#include <vector>

#include <SupportDefs.h>

class BFile;

namespace BPrivate {

struct ResourceItem {
	type_code type = 0;
	int32 id = 0;
	std::string name;
	uint32 size = 0;
	uint64 offset = 0;             // in the file, for data that are not loaded yet
	std::unique_ptr<uint8[]> data; // NULL until loaded; never empty, so that it is a resource's own

	//!	B_NO_MEMORY, or the data are not all there.
	status_t Load(BFile& file);
	status_t SetTo(const void* newData, uint32 newSize);
};

//!	The resources of a file, in the order of the file. One thread at a time.
class ResourceContainer {
public:
	using Items = std::vector<std::unique_ptr<ResourceItem>>;

	const Items& All() const { return fItems; }
	bool IsModified() const { return fModified; }
	void SetModified(bool modified) { fModified = modified; }
	void MakeEmpty();

	//!	Adds an item at the end; one of the same type and id stays, and is found.
	void Append(std::unique_ptr<ResourceItem> item);
	void Replace(std::unique_ptr<ResourceItem> item);
	bool Remove(const ResourceItem* item);

	ResourceItem* ItemAt(int32 index) const;                 // NULL out of range, like all below
	ResourceItem* ItemAt(type_code type, int32 index) const; // among those of the type
	ResourceItem* Find(type_code type, int32 id) const;
	ResourceItem* Find(type_code type, const char* name) const;
	ResourceItem* Find(const void* data) const;

	status_t LoadAll(BFile& file);

private:
	template<typename Matches> ResourceItem* _First(Matches matches) const;

	Items fItems;
	bool fModified = false;
};

} // namespace BPrivate
