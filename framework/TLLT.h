#pragma once

#include <map>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include <SupportDefs.h>

class BResources;

namespace merion {

class TIniFile;

/*!	The texts of the user interface by key. Loading a table over another one merges them, so a translation that lacks a
	key shows the earlier text. A language file (.llt) is an INI text of lines of 2048 bytes at most:

	[Informations]	Header=LLT File Format 100, Language, Writer, SpecialThanks: as they are
	[Data]			key=text, where #n is a line feed, #t a tab, #s a space, ## a #, and the first @key@ that key's text

	References are resolved in the order of the keys over the whole table at each load, each text's first only.
	Thread: Text(), the names and what replaces the table may be used by any thread at once. A pointer that Text() gave
	stays good until the table is destroyed: texts that were replaced are kept, each once. */
class TLLT {
public:
	TLLT() = default;
	TLLT(const TLLT& other);
	TLLT& operator=(const TLLT& other); // replaces all at once
	~TLLT();

	// B_ERROR, and nothing is changed, without a right header.

	[[nodiscard]] status_t Load(const char* path);
	/*!	The resource of type 'CSTR' of that id; of the application's own resources where `resources` is NULL. B_ERROR also when
		there is none. */
	[[nodiscard]] status_t Load(BResources* resources, long id);
	//! Leaves "Data" as the file's current section.
	[[nodiscard]] status_t Load(TIniFile* ini);

	//! The key is case-sensitive; "! ERROR !" for one that is not there.
	const char* Text(const char* key) const;
	std::string LanguageName() const;
	std::string Writer() const;
	std::string SpecialThanks() const;
	//! For the thread that loads: it changes with the table.
	const std::map<std::string, std::string>& TextMap() const { return fTexts; }
	//! Whether an alert names a key that is not there; off at first.
	void SET_SHOW_DB_INFO(bool show);

	/*!	Replaces each `from` by `to`, from left to right. The # of a `from` other than "##" counts only where it ends an
		odd run of them; in an even one it is the second half of a "##". */
	static void Decode(std::string* text, const char* from, const char* to);

private:
	void ResolveReferences();
	void Publish();

	bool fShowDBInfo = false;
	std::map<std::string, std::string> fTexts;
	std::string fUnused; // always empty
	std::string fLanguageName;
	std::string fSpecialThanks;
	std::string fWriter;

	mutable std::shared_mutex fLock;            // for all members
	std::unordered_set<std::string> fKeptTexts; // every text that Text() could ever give
	std::unordered_map<std::string_view, const char*> fPublished; // fTexts' keys to fKeptTexts
};

} // namespace merion

//! The texts of the whole user interface; NULL until the application makes it.
extern merion::TLLT* gLLT;
