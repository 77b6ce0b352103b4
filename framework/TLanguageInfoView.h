#pragma once

#include <View.h>

class BStringView;
class BTextView;

namespace merion {

/*!	What an about window shows of the loaded language: its name, who wrote it and whom he thanks, as gLLT knows them. Long thanks are wrapped, and
	scroll. Thread and owner: as every view. */
class TLanguageInfoView : public BView {
public:
	explicit TLanguageInfoView(BRect frame);

	void SetLabels();

private:
	BStringView* AddLine(BRect frame, const char* name);

	BStringView* fNameLabel;
	BStringView* fName;
	BStringView* fWriterLabel;
	BStringView* fWriter;
	BStringView* fThanksLabel;
	BTextView* fThanks;
};

} // namespace merion
