#pragma once

#include <string>
#include <string_view>

#include <List.h>
#include <String.h>

#include "framework/TNameIndex.h"

namespace merion {

class TIniFilePair;

/*!	A section of a TIniFile: its name, its pairs in the order in which they came, its comments. Keys are found whatever
	the case of their ASCII letters; of several of one key, the first. The line length is the most that a text takes: a
	longer name, key or value is cut there, also one that is looked for. Thread: that of its file. */
class TIniFileSection {
public:
	TIniFileSection(std::string_view name, int lineLength);
	TIniFileSection(const TIniFileSection&) = delete;
	TIniFileSection& operator=(const TIniFileSection&) = delete;
	~TIniFileSection();

	const std::string& Name() const { return fName; }
	const BList& Pairs() const { return fPairs; } // of TIniFilePair*
	//! NULL without one.
	TIniFilePair* FindPair(std::string_view key);
	//! At the end, also when there is one of that key. The section owns it.
	TIniFilePair* CreatePair(std::string_view key, std::string_view value);
	//! The first of that key; false without one.
	bool DeletePair(std::string_view key);
	//! Appends pointers to the keys' texts (const char*, the section's), in order.
	void EnumKeys(BList* list) const;

	//! A text of several lines is as many comments.
	void AddComment(std::string_view text);
	/*!	The next comment, cut at the line length, into a buffer of line length + 1 bytes; false (and nothing is
		written) when all were given. */
	bool ReadComment(char* buffer);
	void RewindComments() { fCommentCursor = 0; }

private:
	std::string fName;
	int32 fCommentCursor = 0; // byte of the next comment to give
	const int32 fLineLength;
	BList fPairs{20};
	BString fComments; // each with a line feed
	TNameIndex fIndex;
};

} // namespace merion
