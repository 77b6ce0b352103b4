#include "app/TokenTable.h"

#include <array>
#include <atomic>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>

namespace BPrivate::TokenTable {

namespace {

struct Entry {
	BHandler* handler;
	BLooper* looper;
};

struct Shard {
	std::shared_mutex lock;
	std::unordered_map<int32, Entry> entries;
};

Shard&
shard_of(int32 token)
{
	// Never destroyed: loopers may outlive main().
	static std::array<Shard, 16>& sShards = *new std::array<Shard, 16>;
	return sShards[uint32(token) % sShards.size()];
}

} // namespace

int32
Add(BHandler* handler)
{
	static std::atomic<int32> sNext{1};
	const int32 token = sNext++;
	Shard& shard = shard_of(token);
	std::unique_lock lock(shard.lock);
	shard.entries[token] = {handler, nullptr};
	return token;
}

void
Remove(int32 token)
{
	Shard& shard = shard_of(token);
	std::unique_lock lock(shard.lock);
	shard.entries.erase(token);
}

void
SetLooper(int32 token, BLooper* looper)
{
	Shard& shard = shard_of(token);
	std::unique_lock lock(shard.lock);
	shard.entries[token].looper = looper;
}

bool
Find(int32 token, BHandler** handler, BLooper** looper)
{
	Shard& shard = shard_of(token);
	std::shared_lock lock(shard.lock);
	const auto found = shard.entries.find(token);
	if (found == shard.entries.end())
		return false;
	if (handler != nullptr)
		*handler = found->second.handler;
	if (looper != nullptr)
		*looper = found->second.looper;
	return true;
}

} // namespace BPrivate::TokenTable
