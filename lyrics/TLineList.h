#pragma once

#include <memory>
#include <string_view>
#include <vector>

/*!	A text cut into lines, without their line ends: one block of memory for all of them.
	The views that it gives stay valid until the list changes, also when the list is moved. Thread: one at a time. */
class TLineList {
public:
	TLineList() = default;
	TLineList(TLineList&&) = default;
	TLineList& operator=(TLineList&&) = default;

	void Clear();
	//! Cuts a copy of the text at its LFs; it ends at its first NUL. A final LF makes no empty line behind it.
	void SetTo(std::string_view text);
	//! The same with a text that the list keeps; `length` in bytes, up to 2³² - 1.
	void Adopt(std::unique_ptr<char[]> text, size_t length);

	size_t CountLines() const { return fLines.size(); }
	bool IsEmpty() const { return fLines.empty(); }
	std::string_view operator[](size_t index) const;

private:
	// Offsets in the text: half the size of views, and 28 000 lines to the megabyte are usual.
	struct Line {
		uint32_t start;
		uint32_t length;
	};

	std::unique_ptr<char[]> fText;
	std::vector<Line> fLines;
};
