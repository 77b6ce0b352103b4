#pragma once

#include <string>
#include <string_view>

#include <File.h>
#include <GraphicsDefs.h>
#include <List.h>

#include "framework/TNameIndex.h"

namespace merion {

class TIniFileSection;

/*!	A text of sections, keys and values, read whole into memory by each SetTo(), written back by Flush().

	; a comment, of the section that it stands in
	[ Section ]
	key = value

	Leading and trailing white space goes. Keys before the first header are the global section's, which has no header and
	is always there; a second section or key of a name is kept, but never found. Written back, comments stand below their
	header, and a shorter text leaves the old one's tail behind it. There is no quoting.
	Names are matched whatever the case of ASCII letters. A longer name, key or value than the line length is cut there,
	also one that is looked for; a line read goes on as the next one, in a comment written with WriteComment() each line
	is cut when it is read or written. The line length is at least the global section's name's. A key that is NULL is
	never there, other NULL texts are empty.
	What was changed is written back by the destructor, Unset() and SetTo() too; a stream of the caller's must stay until
	then, and is not owned. The order of the virtual operations is shared with the maker's other applications.
	Thread: not locked; one thread at a time. */
class TIniFile {
public:
	//! Without a stream: nothing is there until a SetTo().
	explicit TIniFile(int lineLength);
	// The others are followed by the SetTo() of the same arguments.
	TIniFile(BPositionIO* io, int lineLength);
	TIniFile(const BDirectory* dir, const char* path, unsigned long openMode, int lineLength);
	TIniFile(const char* path, unsigned long openMode, int lineLength);
	TIniFile(const BEntry* entry, unsigned long openMode, int lineLength);
	TIniFile(const entry_ref* ref, unsigned long openMode, int lineLength);
	TIniFile(const TIniFile&) = delete;
	TIniFile& operator=(const TIniFile&) = delete;
	virtual ~TIniFile();

	//! Makes the section current, and at the end where there is none. True.
	virtual bool ChangeSection(const char* name);
	//! False: there is no such key. Each of the operations on keys is for the current section; without one, no key is there.
	virtual bool DeleteKey(const char* key);
	/*!	False: there is no such section. The global section is made anew, empty. Deleting the current one makes the first
		current. */
	virtual bool DeleteSection(const char* name);
	//! Appends pointers to the keys (const char*), in order; they are the file's, and good until the pair goes.
	virtual void EnumKeys(BList* list);
	//! The sections' names likewise, the global section's first.
	virtual void EnumSections(BList* list);
	/*!	Writes from the stream's beginning if something was changed or `force` is set; false when there is nothing to write
		or nothing to write to. Whether the writing succeeds is not told. */
	virtual bool Flush(bool force);
	virtual bool KeyExists(const char* key);
	/*!	The section's next comment, into a buffer of line length + 1 bytes; false when all were given, until the next
		Flush(). */
	virtual bool ReadComment(char* buffer);

	/*	False, and `value` untouched, when there is no such key. A number that cannot be read from the text (as a C++ stream
		does: none there, out of range, for bool neither 0 nor 1) leaves `value` too, but answers true. */

	//! A buffer of line length + 1 bytes.
	virtual bool ReadValue(const char* key, char* value);
	virtual bool ReadValue(const char* key, bool* value);
	virtual bool ReadValue(const char* key, long* value);
	virtual bool ReadValue(const char* key, long long* value);
	virtual bool ReadValue(const char* key, float* value);
	//! "red green blue alpha", the low eight bits of each; 0 for those that cannot be read.
	virtual bool ReadValue(const char* key, rgb_color* value);
	virtual bool SectionExists(const char* name);

	/*	Each is an Unset() first, and makes the global section current. `openMode`: the platform's, for BFile. The status is
		that of opening; after an error there is an empty global section. */

	virtual status_t SetTo(const entry_ref* ref, unsigned long openMode, int lineLength);
	virtual status_t SetTo(const BEntry* entry, unsigned long openMode, int lineLength);
	virtual status_t SetTo(const char* path, unsigned long openMode, int lineLength);
	virtual status_t SetTo(
		const BDirectory* dir, const char* path, unsigned long openMode, int lineLength);
	//! Nothing is there, not even the global section, when the stream is NULL or a folder.
	virtual status_t SetTo(BPositionIO* io, int lineLength);
	//! Writes what was changed, and forgets all sections and the stream.
	virtual void Unset();

	//! At the end of the section's; false without a section.
	virtual bool WriteComment(const char* text);

	/*	At the end of the section where the key is new; false without a section or a key. A bool is "1" or "0", a float has
		six digits at most. */

	virtual bool WriteValue(const char* key, const char* value);
	virtual bool WriteValue(const char* key, bool value);
	virtual bool WriteValue(const char* key, long value);
	virtual bool WriteValue(const char* key, long long value);
	virtual bool WriteValue(const char* key, float value);
	virtual bool WriteValue(const char* key, rgb_color value);

	//! NULL without one. The file's.
	TIniFileSection* FindSection(const char* name);
	//! At `index` (-1, or none of the list: at the end), also when there is one of that name. The file owns it.
	TIniFileSection* CreateSection(const char* name, int index);
	//! Reads the stream from its beginning, and adds to what is there.
	void Load();
	/*!	From where the stream stands, at most size - 1 bytes and a terminator, without the line's end. Answers the bytes
		taken with it, 0 at the end of the stream or of what can be read. */
	int ReadLine(char* buffer, int size);
	//! With a line feed.
	void WriteLine(const char* text);
	//! Takes the line length and reads the stream, if there is one.
	void Init(int lineLength);
	//! Deletes all sections.
	void DestroyVar();
	int LineLength() const { return fLineLength; }

private:
	status_t FileOpened(status_t status, int lineLength);
	TIniFileSection* TakeLine(std::string_view line, TIniFileSection* section);
	TIniFileSection* SectionAt(int32 index) const;
	const std::string* Value(const char* key);
	bool SetValue(const char* key, std::string_view value);
	void WriteBytes(std::string_view bytes);

	bool fIsDirty = false;
	int32 fLineLength = 0;
	BFile fFile;
	BList fSections{20};
	BPositionIO* fStream = nullptr;
	TIniFileSection* fCurrentSection = nullptr;
	TNameIndex fSectionIndex;
};

} // namespace merion
