#pragma once

#include <SupportDefs.h>
#include <vector>

/*!	An ordered list of pointers. It never owns what they point to. Indices that are out of range
	answer NULL, false or -1. Thread: not locked; one thread at a time. */
class BList {
public:
	BList(int32 expectedItems = 20);
	BList(const BList& other) = default;
	virtual ~BList();
	BList& operator=(const BList& other) = default;

	bool AddItem(void* item);
	//! `index` from 0 to CountItems(); what is there moves up.
	bool AddItem(void* item, int32 index);
	bool AddList(const BList* list);
	bool AddList(const BList* list, int32 index);
	//! The first item that equals `item`.
	bool RemoveItem(void* item);
	//! Answers what was there.
	void* RemoveItem(int32 index);
	bool RemoveItems(int32 index, int32 count);
	bool ReplaceItem(int32 index, void* item);
	bool SwapItems(int32 indexA, int32 indexB);
	bool MoveItem(int32 fromIndex, int32 toIndex);
	void MakeEmpty();

	//! As qsort() does: `compare` gets the addresses of two items.
	void SortItems(int (*compare)(const void*, const void*));

	void* ItemAt(int32 index) const;
	//! `index` must be in range.
	void* ItemAtFast(int32 index) const { return fItems[index]; }
	void* FirstItem() const;
	void* LastItem() const;
	void* Items() const; // the array itself; NULL when empty
	bool HasItem(void* item) const;
	int32 IndexOf(void* item) const;
	int32 CountItems() const { return static_cast<int32>(fItems.size()); }
	bool IsEmpty() const { return fItems.empty(); }

	//! In order, until `func` answers true. The list must not change meanwhile.
	void DoForEach(bool (*func)(void* item));
	void DoForEach(bool (*func)(void* item, void* argument), void* argument);

private:
	bool IsValid(int32 index) const { return index >= 0 && index < CountItems(); }

	std::vector<void*> fItems;
};
