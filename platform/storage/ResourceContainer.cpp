#include "storage/ResourceContainer.h"

#include <cstring>
#include <new>

#include <File.h>

#include "storage/ResourceFormat.h"

namespace BPrivate {

status_t
ResourceItem::Load(BFile& file)
{
	if (data)
		return B_OK;
	// Damaged sizes are common, memory for them is not.
	off_t fileSize;
	status_t status = file.GetSize(&fileSize);
	if (status != B_OK)
		return status;
	if (offset > static_cast<uint64>(fileSize) || size > fileSize - offset)
		return B_IO_ERROR;

	std::unique_ptr<uint8[]> bytes(new (std::nothrow) uint8[size + size_t(1)]);
	if (!bytes)
		return B_NO_MEMORY;
	status = read_exactly(file, offset, bytes.get(), size);
	if (status == B_OK)
		data = std::move(bytes);
	return status;
}

status_t
ResourceItem::SetTo(const void* newData, uint32 newSize)
{
	std::unique_ptr<uint8[]> bytes(new (std::nothrow) uint8[newSize + size_t(1)]);
	if (!bytes)
		return B_NO_MEMORY;
	if (newSize > 0)
		memcpy(bytes.get(), newData, newSize);
	data = std::move(bytes);
	size = newSize;
	return B_OK;
}

void
ResourceContainer::MakeEmpty()
{
	fItems.clear();
	fModified = false;
}

void
ResourceContainer::Append(std::unique_ptr<ResourceItem> item)
{
	fItems.push_back(std::move(item));
}

void
ResourceContainer::Replace(std::unique_ptr<ResourceItem> item)
{
	ResourceItem* old = Find(item->type, item->id);
	if (old != NULL)
		Remove(old);
	Append(std::move(item));
	fModified = true;
}

bool
ResourceContainer::Remove(const ResourceItem* item)
{
	size_t removed = std::erase_if(fItems, [=](const auto& other) { return other.get() == item; });
	if (removed > 0)
		fModified = true;
	return removed > 0;
}

template<typename Matches>
ResourceItem*
ResourceContainer::_First(Matches matches) const
{
	for (const auto& item : fItems) {
		if (matches(*item))
			return item.get();
	}
	return NULL;
}

ResourceItem*
ResourceContainer::ItemAt(int32 index) const
{
	if (index < 0 || static_cast<size_t>(index) >= fItems.size())
		return NULL;
	return fItems[index].get();
}

ResourceItem*
ResourceContainer::ItemAt(type_code type, int32 index) const
{
	if (index < 0)
		return NULL;
	return _First([&](const ResourceItem& item) { return item.type == type && index-- == 0; });
}

ResourceItem*
ResourceContainer::Find(type_code type, int32 id) const
{
	return _First([=](const ResourceItem& item) { return item.type == type && item.id == id; });
}

ResourceItem*
ResourceContainer::Find(type_code type, const char* name) const
{
	if (name == NULL)
		return NULL;
	return _First([=](const ResourceItem& item) { return item.type == type && item.name == name; });
}

ResourceItem*
ResourceContainer::Find(const void* data) const
{
	if (data == NULL)
		return NULL;
	return _First([=](const ResourceItem& item) { return item.data.get() == data; });
}

status_t
ResourceContainer::LoadAll(BFile& file)
{
	for (const auto& item : fItems) {
		status_t status = item->Load(file);
		if (status != B_OK)
			return status;
	}
	return B_OK;
}

} // namespace BPrivate
