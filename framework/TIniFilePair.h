#pragma once

#include <string>
#include <string_view>

namespace merion {

/*!	A key and its value, both empty at first. The length given is the most that either takes: what is longer is cut,
	at that byte. Texts end at their first NUL. Thread: that of its file. */
class TIniFilePair {
public:
	explicit TIniFilePair(int lineLength) : fLineLength(lineLength) { }
	TIniFilePair(const TIniFilePair&) = delete;
	TIniFilePair& operator=(const TIniFilePair&) = delete;

	void SetKey(std::string_view key) { fKey = key.substr(0, fLineLength); }
	void SetValue(std::string_view value) { fValue = value.substr(0, fLineLength); }
	//! Good until the next change of it.
	const std::string& Key() const { return fKey; }
	const std::string& Value() const { return fValue; }

private:
	const int fLineLength;
	std::string fKey;
	std::string fValue;
};

} // namespace merion
