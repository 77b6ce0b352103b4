#include "framework/TIniFileSection.h"

#include <algorithm>
#include <cstring>

#include "framework/TIniFilePair.h"

namespace merion {

static std::string_view
key_of(const void* pair)
{
	return static_cast<const TIniFilePair*>(pair)->Key();
}

TIniFileSection::TIniFileSection(std::string_view name, int lineLength)
	: fName(name.substr(0, lineLength)),
	  fLineLength(lineLength),
	  fIndex(fPairs, key_of)
{ }

TIniFileSection::~TIniFileSection()
{
	for (int32 i = 0; i < fPairs.CountItems(); i++)
		delete static_cast<TIniFilePair*>(fPairs.ItemAtFast(i));
}

TIniFilePair*
TIniFileSection::FindPair(std::string_view key)
{
	return static_cast<TIniFilePair*>(fIndex.Find(key.substr(0, fLineLength)));
}

TIniFilePair*
TIniFileSection::CreatePair(std::string_view key, std::string_view value)
{
	TIniFilePair* pair = new TIniFilePair(fLineLength);
	pair->SetKey(key);
	pair->SetValue(value);
	fPairs.AddItem(pair);
	return pair;
}

bool
TIniFileSection::DeletePair(std::string_view key)
{
	TIniFilePair* pair = FindPair(key);
	if (pair == nullptr)
		return false;
	fIndex.FirstWillGo(pair);
	fPairs.RemoveItem(pair);
	delete pair;
	return true;
}

void
TIniFileSection::EnumKeys(BList* list) const
{
	for (int32 i = 0; i < fPairs.CountItems(); i++) {
		const TIniFilePair* pair = static_cast<const TIniFilePair*>(fPairs.ItemAtFast(i));
		list->AddItem(const_cast<char*>(pair->Key().c_str()));
	}
}

void
TIniFileSection::AddComment(std::string_view text)
{
	fComments.Append(text.data(), static_cast<int32>(text.size()));
	fComments.Append("\n");
}

bool
TIniFileSection::ReadComment(char* buffer)
{
	if (fCommentCursor >= fComments.Length())
		return false;
	const char* comment = fComments.String() + fCommentCursor;
	const int32 length = strchr(comment, '\n') - comment;
	const int32 shown = std::min(length, fLineLength);
	memcpy(buffer, comment, shown);
	buffer[shown] = '\0';
	fCommentCursor += length + 1;
	return true;
}

} // namespace merion
