#include <List.h>

#include <algorithm>
#include <stdlib.h>

BList::BList(int32 expectedItems)
{
	fItems.reserve(std::clamp<int32>(expectedItems, 0, 1024));
}

BList::~BList() = default;

bool
BList::AddItem(void* item)
{
	fItems.push_back(item);
	return true;
}

bool
BList::AddItem(void* item, int32 index)
{
	if (index < 0 || index > CountItems())
		return false;
	fItems.insert(fItems.begin() + index, item);
	return true;
}

bool
BList::AddList(const BList* list)
{
	return AddList(list, CountItems());
}

bool
BList::AddList(const BList* list, int32 index)
{
	if (list == nullptr || index < 0 || index > CountItems())
		return false;
	const std::vector<void*> items = list->fItems; // may be this very list
	fItems.insert(fItems.begin() + index, items.begin(), items.end());
	return true;
}

bool
BList::RemoveItem(void* item)
{
	const int32 index = IndexOf(item);
	if (index < 0)
		return false;
	fItems.erase(fItems.begin() + index);
	return true;
}

void*
BList::RemoveItem(int32 index)
{
	if (!IsValid(index))
		return nullptr;
	void* item = fItems[index];
	fItems.erase(fItems.begin() + index);
	return item;
}

bool
BList::RemoveItems(int32 index, int32 count)
{
	if (index < 0 || index > CountItems() || count < 0)
		return false;
	count = std::min(count, CountItems() - index);
	fItems.erase(fItems.begin() + index, fItems.begin() + index + count);
	return true;
}

bool
BList::ReplaceItem(int32 index, void* item)
{
	if (!IsValid(index))
		return false;
	fItems[index] = item;
	return true;
}

bool
BList::SwapItems(int32 indexA, int32 indexB)
{
	if (!IsValid(indexA) || !IsValid(indexB))
		return false;
	std::swap(fItems[indexA], fItems[indexB]);
	return true;
}

bool
BList::MoveItem(int32 fromIndex, int32 toIndex)
{
	if (!IsValid(fromIndex) || !IsValid(toIndex))
		return false;
	return AddItem(RemoveItem(fromIndex), toIndex);
}

void
BList::MakeEmpty()
{
	fItems.clear();
}

void
BList::SortItems(int (*compare)(const void*, const void*))
{
	if (compare != nullptr)
		qsort(fItems.data(), fItems.size(), sizeof(void*), compare);
}

void*
BList::ItemAt(int32 index) const
{
	return IsValid(index) ? fItems[index] : nullptr;
}

void*
BList::FirstItem() const
{
	return ItemAt(0);
}

void*
BList::LastItem() const
{
	return ItemAt(CountItems() - 1);
}

void*
BList::Items() const
{
	return fItems.empty() ? nullptr : const_cast<void**>(fItems.data());
}

bool
BList::HasItem(void* item) const
{
	return IndexOf(item) >= 0;
}

int32
BList::IndexOf(void* item) const
{
	const auto found = std::find(fItems.begin(), fItems.end(), item);
	return found != fItems.end() ? static_cast<int32>(found - fItems.begin()) : -1;
}

void
BList::DoForEach(bool (*func)(void* item))
{
	if (func != nullptr)
		std::find_if(fItems.begin(), fItems.end(), func);
}

void
BList::DoForEach(bool (*func)(void* item, void* argument), void* argument)
{
	if (func != nullptr)
		std::find_if(
			fItems.begin(), fItems.end(), [=](void* item) { return func(item, argument); });
}
