#pragma once

#include <atomic>
#include <bit>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <type_traits>

namespace merion {

/*!	A small value of a record that one thread writes and others read. Reads and writes are whole; there is no order
	among several values. Copying copies the value. */
template<typename T> class TShared {
	// A structure, such as a colour, goes in as a number: its own alignment may be too small for one access.
	using Stored = std::conditional_t<std::is_class_v<T>, uint32_t, T>;
	static_assert(sizeof(Stored) == sizeof(T) && std::atomic<Stored>::is_always_lock_free);

public:
	TShared(T value = T()) : fValue(std::bit_cast<Stored>(value)) { }
	TShared(const TShared& other) : TShared(other.Get()) { }

	TShared& operator=(const TShared& other)
	{
		Set(other.Get());
		return *this;
	}

	TShared& operator=(T value)
	{
		Set(value);
		return *this;
	}

	operator T() const { return Get(); }
	T Get() const { return std::bit_cast<T>(fValue.load(std::memory_order_relaxed)); }
	void Set(T value) { fValue.store(std::bit_cast<Stored>(value), std::memory_order_relaxed); }

private:
	std::atomic<Stored> fValue;
};

/*!	A text of a record, the same way: it goes in and out as a copy, under a lock of its own. */
class TSharedText {
public:
	//! `maxLength`: bytes; a longer text is cut before the character that would not fit whole.
	explicit TSharedText(std::string_view text = {}, size_t maxLength = std::string::npos);
	//! Copies the text; the maximum stays each one's own.
	TSharedText(const TSharedText& other);
	TSharedText& operator=(const TSharedText& other);
	TSharedText& operator=(std::string_view text);

	std::string Get() const;
	void Set(std::string_view text);

private:
	mutable std::mutex fLock;
	const size_t fMaxLength;
	std::string fText;
};

} // namespace merion
