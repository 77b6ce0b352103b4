#include <OS.h>

#include "kernel/Deadline.h"
#include <atomic>
#include <limits.h>
#include <mutex>

/*	A semaphore is a slot of a table that only grows. Its id is the slot's index and the number of
	times that the slot was used, so an old id does not fit a new semaphore. Id and free places
	share one word: without a wait, acquiring and releasing are one compare-and-swap of it. Who must
	wait subtracts first, so the count is below 0 exactly as long as somebody waits, and all that is
	done then is done under the slot's lock. */

namespace {

using BPrivate::Deadline;

constexpr int32 kIndexBits = 16;
constexpr int32 kIndexMask = (1 << kIndexBits) - 1;
constexpr int32 kMaxGeneration = INT_MAX >> kIndexBits;
constexpr int32 kChunkSize = 1024;
constexpr int32 kChunkCount = (kIndexMask + 1) / kChunkSize;

struct Waiter {
	int32 count;
	status_t result = B_WOULD_BLOCK; // until somebody decides
	std::condition_variable decided;
	Waiter* next = nullptr;
};

struct Word {
	sem_id id;
	int32 count;
};

struct alignas(64) Slot {
	std::atomic<uint64> word{0};
	std::mutex lock;
	// under `lock`: who waits, in the order of coming, and for how many places in all
	Waiter* first = nullptr;
	Waiter* last = nullptr;
	int64 wanted = 0;
	// under sTableLock
	int32 generation = 0;
	Slot* nextFree = nullptr;
	int32 index = 0;
};

std::atomic<Slot*> sChunks[kChunkCount];
std::mutex sTableLock;
int32 sUsedSlots = 0; // ever
Slot* sFirstFree = nullptr;
Slot* sLastFree = nullptr;

uint64
pack(sem_id id, int32 count)
{
	return static_cast<uint64>(static_cast<uint32>(id)) << 32 | static_cast<uint32>(count);
}

Word
unpack(uint64 word)
{
	return {static_cast<sem_id>(word >> 32), static_cast<int32>(word)};
}

//! The slot that `id` would be in; whether it is still there tells the word.
Slot*
slot_of(sem_id id)
{
	if (id <= kIndexMask)
		return nullptr;
	const int32 index = id & kIndexMask;
	Slot* chunk = sChunks[index / kChunkSize].load(std::memory_order_acquire);
	return chunk != nullptr ? chunk + index % kChunkSize : nullptr;
}

Slot*
new_slot()
{
	if (sUsedSlots > kIndexMask)
		return nullptr;
	std::atomic<Slot*>& chunk = sChunks[sUsedSlots / kChunkSize];
	if (chunk.load(std::memory_order_relaxed) == nullptr)
		chunk.store(new Slot[kChunkSize], std::memory_order_release);
	Slot* slot = chunk.load(std::memory_order_relaxed) + sUsedSlots % kChunkSize;
	slot->index = sUsedSlots++;
	return slot;
}

Slot*
take_slot()
{
	Slot* slot = sFirstFree;
	if (slot == nullptr)
		return new_slot();
	sFirstFree = slot->nextFree;
	if (sFirstFree == nullptr)
		sLastFree = nullptr;
	slot->nextFree = nullptr;
	return slot;
}

void
give_slot_back(Slot* slot)
{
	std::lock_guard lock(sTableLock);
	(sLastFree != nullptr ? sLastFree->nextFree : sFirstFree) = slot;
	sLastFree = slot;
}

/*!	Changes the count by `change`, if the semaphore is `id` and `allowed(count)`.
	Answers whether it did; `seen` is what the word was. */
template<class Allowed>
bool
change_count(Slot* slot, sem_id id, int32 change, Word& seen, Allowed allowed)
{
	uint64 word = slot->word.load(std::memory_order_acquire);
	for (;;) {
		seen = unpack(word);
		if (seen.id != id || !allowed(seen.count))
			return false;
		if (slot->word.compare_exchange_weak(word, pack(id, seen.count + change),
				std::memory_order_acq_rel, std::memory_order_acquire))
			return true;
	}
}

bool
always(int32)
{
	return true;
}

void
append(Slot* slot, Waiter* waiter)
{
	(slot->last != nullptr ? slot->last->next : slot->first) = waiter;
	slot->last = waiter;
	slot->wanted += waiter->count;
}

void
remove(Slot* slot, Waiter* waiter)
{
	Waiter* previous = nullptr;
	for (Waiter* at = slot->first; at != waiter; at = at->next)
		previous = at;
	(previous != nullptr ? previous->next : slot->first) = waiter->next;
	if (slot->last == waiter)
		slot->last = previous;
	slot->wanted -= waiter->count;
}

void
decide(Slot* slot, Waiter* waiter, status_t result)
{
	remove(slot, waiter);
	waiter->result = result;
	// with the lock held: the condition is on the waiter's stack
	waiter->decided.notify_one();
}

//! Lets those go for whom there are places, in the order of coming.
void
serve(Slot* slot)
{
	const int32 count = unpack(slot->word.load(std::memory_order_acquire)).count;
	int64 places = count + slot->wanted;
	while (slot->first != nullptr && slot->first->count <= places) {
		places -= slot->first->count;
		decide(slot, slot->first, B_OK);
	}
}

status_t
give_up(Slot* slot, sem_id id, Waiter* waiter, const Deadline& deadline)
{
	remove(slot, waiter);
	Word seen;
	change_count(slot, id, waiter->count, seen, always);
	serve(slot);
	return deadline.Failure();
}

status_t
acquire_slowly(Slot* slot, sem_id id, int32 count, const Deadline& deadline)
{
	std::unique_lock lock(slot->lock);
	const int32 needed = deadline.MustNotWait() ? count : INT_MIN + count;
	Word seen;
	if (!change_count(slot, id, -count, seen, [&](int32 free) { return free >= needed; }))
		return seen.id == id ? B_WOULD_BLOCK : B_BAD_SEM_ID;
	if (seen.count >= count)
		return B_OK;

	Waiter waiter;
	waiter.count = count;
	append(slot, &waiter);
	while (waiter.result == B_WOULD_BLOCK) {
		if (!deadline.Wait(waiter.decided, lock) && waiter.result == B_WOULD_BLOCK)
			return give_up(slot, id, &waiter, deadline);
	}
	return waiter.result;
}

} // namespace

sem_id
create_sem(int32 count, const char*)
{
	if (count < 0)
		return B_BAD_VALUE;
	std::lock_guard lock(sTableLock);
	Slot* slot = take_slot();
	if (slot == nullptr)
		return B_NO_MORE_SEMS;
	slot->generation = slot->generation % kMaxGeneration + 1;
	const sem_id id = slot->generation << kIndexBits | slot->index;
	slot->word.store(pack(id, count), std::memory_order_release);
	return id;
}

status_t
delete_sem(sem_id id)
{
	Slot* slot = slot_of(id);
	if (slot == nullptr)
		return B_BAD_SEM_ID;
	{
		std::lock_guard lock(slot->lock);
		uint64 word = slot->word.load(std::memory_order_acquire);
		do {
			if (unpack(word).id != id)
				return B_BAD_SEM_ID;
		} while (!slot->word.compare_exchange_weak(word, 0, std::memory_order_acq_rel));
		while (slot->first != nullptr)
			decide(slot, slot->first, B_BAD_SEM_ID);
	}
	give_slot_back(slot);
	return B_OK;
}

status_t
acquire_sem(sem_id id)
{
	return acquire_sem_etc(id, 1, 0, 0);
}

status_t
acquire_sem_etc(sem_id id, int32 count, uint32 flags, bigtime_t timeout)
{
	if (count < 1)
		return B_BAD_VALUE;
	Slot* slot = slot_of(id);
	if (slot == nullptr)
		return B_BAD_SEM_ID;
	Word seen;
	if (change_count(slot, id, -count, seen, [&](int32 free) { return free >= count; }))
		return B_OK;
	if (seen.id != id)
		return B_BAD_SEM_ID;
	return acquire_slowly(slot, id, count, Deadline(flags, timeout));
}

status_t
release_sem(sem_id id)
{
	return release_sem_etc(id, 1, 0);
}

status_t
release_sem_etc(sem_id id, int32 count, uint32)
{
	if (count < 1)
		return B_BAD_VALUE;
	Slot* slot = slot_of(id);
	if (slot == nullptr)
		return B_BAD_SEM_ID;
	Word seen;
	const auto nobody_waits = [&](int32 free) { return free >= 0 && free <= INT_MAX - count; };
	if (change_count(slot, id, count, seen, nobody_waits))
		return B_OK;

	std::lock_guard lock(slot->lock);
	if (!change_count(slot, id, count, seen, [&](int32 free) { return free <= INT_MAX - count; }))
		return seen.id == id ? B_BAD_VALUE : B_BAD_SEM_ID;
	serve(slot);
	return B_OK;
}

status_t
get_sem_count(sem_id id, int32* count)
{
	if (count == nullptr)
		return B_BAD_VALUE;
	Slot* slot = slot_of(id);
	const Word word = slot != nullptr ? unpack(slot->word.load()) : Word{0, 0};
	if (slot == nullptr || word.id != id)
		return B_BAD_SEM_ID;
	*count = word.count;
	return B_OK;
}
