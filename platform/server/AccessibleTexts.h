#pragma once

#include <QAccessible>
#include <QRect>
#include <QString>
#include <SupportDefs.h>
#include <vector>

namespace BPrivate {

class Canvas;
class DrawnText;

/*!	What is drawn on a canvas, as text, for those who do not see it: each text is an object in the desktop's accessibility
	tree, beneath the canvas, with the text as its name. A change is told without being announced.
	Server thread only. Owner: the canvas. */
class AccessibleTexts {
public:
	explicit AccessibleTexts(Canvas* canvas);
	~AccessibleTexts();

	// For one that is not there, the last three do nothing.
	void Add(int64 id);
	void Remove(int64 id);
	void SetText(int64 id, const QString& text);
	//! In the canvas's coordinates; an empty one says that it is not to be seen.
	void Place(int64 id, QRect frame);

	const std::vector<DrawnText*>& All() const { return fTexts; }

private:
	DrawnText* Find(int64 id) const;
	void Destroy(DrawnText* text);

	Canvas* fCanvas;
	std::vector<DrawnText*> fTexts; // the toolkit deletes them
};

} // namespace BPrivate
