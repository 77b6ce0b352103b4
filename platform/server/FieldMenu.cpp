#include "server/FieldMenu.h"

#include <QApplication>
#include <QKeyEvent>
#include <QProxyStyle>

namespace BPrivate {

static constexpr qint64 kPause = 1000; // ms: what is typed after it begins anew

namespace {

//! Some styles put what is too long beside itself, out of the screen at last.
class ScrollingStyle : public QProxyStyle {
public:
	ScrollingStyle() : QProxyStyle(QApplication::style()->name()) { }

	int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
		QStyleHintReturn* more) const override
	{
		return hint == SH_Menu_Scrollable ? 1 : QProxyStyle::styleHint(hint, option, widget, more);
	}
};

QString
label_of(const QAction& action)
{
	return action.text().replace(QLatin1String("&&"), QLatin1String("&"));
}

} // namespace

FieldMenu::FieldMenu(QWidget* parent) : QMenu(parent) { }

void
FieldMenu::Open(QPoint where)
{
	fTyped.clear();
	if (!style()->styleHint(QStyle::SH_Menu_Scrollable, nullptr, this)) {
		auto* scrolling = new ScrollingStyle;
		scrolling->setParent(this);
		setStyle(scrolling);
	}
	popup(where);
	const QList<QAction*> shown = actions();
	for (QAction* action : shown) {
		if (action->isChecked())
			setActiveAction(action);
	}
}

void
FieldMenu::keyPressEvent(QKeyEvent* event)
{
	constexpr Qt::KeyboardModifiers kNoText
		= Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
	if (!fSinceTyped.isValid() || fSinceTyped.elapsed() > kPause)
		fTyped.clear();
	const QString text = event->text();
	const bool isText = !text.isEmpty() && text[0].isPrint() && !(event->modifiers() & kNoText);
	// a blank chooses, unless it is in the middle of a name
	if (isText && (text != QLatin1String(" ") || !fTyped.isEmpty()))
		Type(text);
	else
		QMenu::keyPressEvent(event);
}

void
FieldMenu::Type(const QString& text)
{
	fSinceTyped.start();
	fTyped += text;
	if (QAction* found = FindTyped())
		setActiveAction(found);
}

QAction*
FieldMenu::FindTyped() const
{
	QAction* within = nullptr;
	const QList<QAction*> all = actions();
	for (QAction* action : all) {
		if (action->isSeparator() || !action->isEnabled())
			continue;
		const qsizetype place = label_of(*action).indexOf(fTyped, 0, Qt::CaseInsensitive);
		if (place == 0)
			return action;
		if (place > 0 && within == nullptr)
			within = action;
	}
	return within;
}

} // namespace BPrivate
