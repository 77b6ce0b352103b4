#include "server/AccessibleTexts.h"

#include "server/Canvas.h"

#include <QAccessibleInterface>
#include <QAccessibleWidget>
#include <QWindow>
#include <algorithm>
#include <utility>

namespace BPrivate {

//! One text in the tree.
class DrawnText : public QAccessibleInterface {
public:
	DrawnText(Canvas* canvas, int64 id) : fCanvas(canvas), fId(id) { }

	int64 Id() const { return fId; }
	void Tell(QAccessible::Event type)
	{
		QAccessibleEvent event(this, type);
		QAccessible::updateAccessibility(&event);
	}

	bool isValid() const override { return true; }
	QObject* object() const override { return nullptr; }
	QWindow* window() const override { return fCanvas->window()->windowHandle(); }
	QAccessibleInterface* parent() const override
	{
		return QAccessible::queryAccessibleInterface(fCanvas);
	}
	QAccessibleInterface* child(int) const override { return nullptr; }
	QAccessibleInterface* childAt(int, int) const override { return nullptr; }
	int childCount() const override { return 0; }
	int indexOfChild(const QAccessibleInterface*) const override { return -1; }
	QString text(QAccessible::Text which) const override
	{
		return which == QAccessible::Name ? fText : QString();
	}
	void setText(QAccessible::Text, const QString&) override { }
	QRect rect() const override
	{
		return fFrame.isEmpty() ? QRect() : fFrame.translated(fCanvas->mapToGlobal(QPoint(0, 0)));
	}
	QAccessible::Role role() const override { return QAccessible::StaticText; }
	QAccessible::State state() const override
	{
		QAccessible::State state;
		state.readOnly = true;
		state.invisible = fFrame.isEmpty() || !fCanvas->isVisible();
		return state;
	}

	QString fText;
	QRect fFrame;

private:
	Canvas* fCanvas;
	int64 fId;
};

namespace {

//! The canvas with its real widgets, and its texts after them.
class CanvasInTree : public QAccessibleWidget {
public:
	explicit CanvasInTree(Canvas* canvas) : QAccessibleWidget(canvas), fCanvas(canvas) { }

	int childCount() const override { return CountWidgets() + int(Texts().size()); }
	QAccessibleInterface* child(int index) const override
	{
		const int text = index - CountWidgets();
		if (text < 0)
			return QAccessibleWidget::child(index);
		return text < int(Texts().size()) ? Texts()[text] : nullptr;
	}
	int indexOfChild(const QAccessibleInterface* child) const override
	{
		const auto text = std::find(Texts().begin(), Texts().end(), child);
		return text != Texts().end() ? CountWidgets() + int(text - Texts().begin())
									 : QAccessibleWidget::indexOfChild(child);
	}
	QAccessibleInterface* childAt(int x, int y) const override
	{
		if (QAccessibleInterface* widget = QAccessibleWidget::childAt(x, y))
			return widget;
		const auto text = std::find_if(Texts().begin(), Texts().end(),
			[=](const DrawnText* text) { return text->rect().contains(x, y); });
		return text != Texts().end() ? *text : nullptr;
	}

private:
	const std::vector<DrawnText*>& Texts() const { return fCanvas->Texts().All(); }
	int CountWidgets() const { return QAccessibleWidget::childCount(); }

	Canvas* fCanvas;
};

QAccessibleInterface*
make_canvas_in_tree(const QString&, QObject* object)
{
	auto* canvas = dynamic_cast<Canvas*>(object);
	return canvas != nullptr ? new CanvasInTree(canvas) : nullptr;
}

} // namespace

AccessibleTexts::AccessibleTexts(Canvas* canvas) : fCanvas(canvas)
{
	QAccessible::installFactory(make_canvas_in_tree); // again: nothing happens
}

AccessibleTexts::~AccessibleTexts()
{
	for (DrawnText* text : std::exchange(fTexts, {}))
		Destroy(text);
}

DrawnText*
AccessibleTexts::Find(int64 id) const
{
	const auto found = std::find_if(
		fTexts.begin(), fTexts.end(), [=](const DrawnText* text) { return text->Id() == id; });
	return found != fTexts.end() ? *found : nullptr;
}

void
AccessibleTexts::Add(int64 id)
{
	auto* text = new DrawnText(fCanvas, id);
	QAccessible::registerAccessibleInterface(text);
	fTexts.push_back(text);
	text->Tell(QAccessible::ObjectCreated);
}

void
AccessibleTexts::Remove(int64 id)
{
	DrawnText* text = Find(id);
	if (text == nullptr)
		return;
	text->Tell(QAccessible::ObjectDestroyed);
	std::erase(fTexts, text);
	Destroy(text);
}

void
AccessibleTexts::Destroy(DrawnText* text)
{
	QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(text));
}

void
AccessibleTexts::SetText(int64 id, const QString& text)
{
	DrawnText* drawn = Find(id);
	if (drawn == nullptr || drawn->fText == text)
		return;
	drawn->fText = text;
	drawn->Tell(QAccessible::NameChanged);
}

void
AccessibleTexts::Place(int64 id, QRect frame)
{
	if (DrawnText* text = Find(id))
		text->fFrame = frame;
}

} // namespace BPrivate
