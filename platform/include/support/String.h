#pragma once

#include <SupportDefs.h>
#include <string>

/*!	A string of UTF-8 bytes that grows as needed. NULL is taken as the empty string wherever text is
	expected. Offsets and lengths count bytes; those that lie outside are clipped, and what is
	looked for and is not there answers B_ERROR. The I... versions ignore the case of ASCII letters.
	Thread: not locked; one thread at a time. */
class BString {
public:
	BString() = default;
	BString(const char* string);
	BString(const BString& string) = default;
	BString(BString&& string) noexcept = default;
	BString(const char* string, int32 maxLength);
	~BString() = default;

	const char* String() const { return fText.c_str(); }
	int32 Length() const { return static_cast<int32>(fText.size()); }
	int32 CountChars() const; // UTF-8 characters
	bool IsEmpty() const { return fText.empty(); }
	char ByteAt(int32 index) const; // 0 out of range
	char operator[](int32 index) const { return fText[index]; }
	char& operator[](int32 index) { return fText[index]; }

	BString& operator=(const BString& string) = default;
	BString& operator=(BString&& string) noexcept = default;
	BString& operator=(const char* string) { return SetTo(string); }
	BString& operator=(char c) { return SetTo(c, 1); }
	BString& SetTo(const char* string);
	BString& SetTo(const char* string, int32 maxLength);
	BString& SetTo(const BString& string) { return *this = string; }
	BString& SetTo(const BString& string, int32 maxLength);
	BString& SetTo(char c, int32 count);
	BString& SetToFormat(const char* format, ...) __attribute__((format(printf, 2, 3)));
	BString& CopyInto(BString& into, int32 fromOffset, int32 length) const;
	//! Adds no NUL.
	void CopyInto(char* into, int32 fromOffset, int32 length) const;

	BString& operator+=(const BString& string) { return Append(string); }
	BString& operator+=(const char* string) { return Append(string); }
	BString& operator+=(char c) { return Append(c, 1); }
	BString& Append(const BString& string);
	BString& Append(const BString& string, int32 length);
	BString& Append(const char* string);
	BString& Append(const char* string, int32 length);
	BString& Append(char c, int32 count);
	BString& Prepend(const BString& string) { return Insert(string, 0); }
	BString& Prepend(const char* string) { return Insert(string, 0); }
	BString& Prepend(char c, int32 count) { return Insert(c, count, 0); }
	BString& Insert(const BString& string, int32 position);
	BString& Insert(const char* string, int32 position);
	BString& Insert(const char* string, int32 length, int32 position);
	BString& Insert(char c, int32 count, int32 position);

	BString& Truncate(int32 newLength, bool lazy = true);
	BString& Remove(int32 from, int32 length);
	BString& RemoveFirst(const char* string);
	BString& RemoveLast(const char* string);
	BString& RemoveAll(const char* string);
	BString& RemoveSet(const char* bytes);
	BString& Trim(); // ASCII white space at both ends

	//! < 0, 0 or > 0, as strcmp() does.
	int Compare(const char* string) const;
	int Compare(const BString& string) const { return Compare(string.String()); }
	int Compare(const char* string, int32 length) const;
	int ICompare(const char* string) const;
	int ICompare(const BString& string) const { return ICompare(string.String()); }
	int ICompare(const char* string, int32 length) const;

	//! The offset of the first match at or after `fromOffset`.
	int32 FindFirst(const char* string, int32 fromOffset = 0) const;
	int32 FindFirst(const BString& string, int32 fromOffset = 0) const;
	int32 FindFirst(char c, int32 fromOffset = 0) const;
	//! The offset of the last match that begins before `beforeOffset`.
	int32 FindLast(const char* string) const;
	int32 FindLast(const BString& string) const { return FindLast(string.String()); }
	int32 FindLast(const char* string, int32 beforeOffset) const;
	int32 FindLast(char c) const;
	int32 IFindFirst(const char* string, int32 fromOffset = 0) const;
	int32 IFindLast(const char* string) const;
	bool StartsWith(const char* string) const;
	bool StartsWith(const BString& string) const { return StartsWith(string.String()); }
	bool IStartsWith(const char* string) const;
	bool EndsWith(const char* string) const;
	bool EndsWith(const BString& string) const { return EndsWith(string.String()); }
	bool IEndsWith(const char* string) const;

	BString& ReplaceFirst(const char* replaceThis, const char* withThis);
	BString& ReplaceLast(const char* replaceThis, const char* withThis);
	BString& ReplaceAll(const char* replaceThis, const char* withThis, int32 fromOffset = 0);
	BString& Replace(
		const char* replaceThis, const char* withThis, int32 maxReplaceCount, int32 fromOffset = 0);
	BString& ReplaceFirst(char replaceThis, char withThis);
	BString& ReplaceAll(char replaceThis, char withThis, int32 fromOffset = 0);
	BString& ReplaceSet(const char* setOfBytes, const char* withThis);
	BString& ReplaceSet(const char* setOfBytes, char withThis);

	BString& ToLower(); // ASCII letters
	BString& ToUpper();

	//! Direct access to at least `maxLength` bytes and a NUL, until UnlockBuffer().
	char* LockBuffer(int32 maxLength);
	//! `length` -1: up to the first NUL.
	BString& UnlockBuffer(int32 length = -1);

	BString& operator<<(const char* string) { return Append(string); }
	BString& operator<<(const BString& string) { return Append(string); }
	BString& operator<<(char c) { return Append(c, 1); }
	BString& operator<<(bool value);
	BString& operator<<(int value);
	BString& operator<<(unsigned int value);
	BString& operator<<(long value);
	BString& operator<<(unsigned long value);
	BString& operator<<(long long value);
	BString& operator<<(unsigned long long value);
	//! Two digits after the point.
	BString& operator<<(double value);

private:
	int32 Clip(int32 offset) const;

	std::string fText;
};

inline bool
operator==(const BString& a, const BString& b)
{
	return a.Compare(b) == 0;
}

inline bool
operator==(const BString& a, const char* b)
{
	return a.Compare(b) == 0;
}

inline bool
operator<(const BString& a, const BString& b)
{
	return a.Compare(b) < 0;
}

inline bool
operator<(const BString& a, const char* b)
{
	return a.Compare(b) < 0;
}

inline bool
operator>(const BString& a, const BString& b)
{
	return a.Compare(b) > 0;
}

inline bool
operator<=(const BString& a, const BString& b)
{
	return a.Compare(b) <= 0;
}

inline bool
operator>=(const BString& a, const BString& b)
{
	return a.Compare(b) >= 0;
}

inline BString
operator+(BString a, const BString& b)
{
	return a += b;
}

inline BString
operator+(BString a, const char* b)
{
	return a += b;
}
