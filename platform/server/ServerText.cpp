#include "server/ServerText.h"

#include "server/WidgetProxy.h"

#include <QKeyEvent>
#include <QScopedValueRollback>
#include <QTextBlock>
#include <QTextLayout>
#include <cmath>

namespace BPrivate {

static constexpr int kLineDigits = 7; // what a line should have room for
static constexpr int kPlainHeightLines = 4;

bool
TextRules::Accept(QString& text, int& caret) const
{
	QString allowed;
	int place = 0;
	int newCaret = 0;
	for (uint character : text.toUcs4()) {
		const int units = QChar::requiresSurrogates(character) ? 2 : 1;
		if (disallowed.find(character) == std::u32string::npos) {
			allowed += QString::fromUcs4(reinterpret_cast<const char32_t*>(&character), 1);
			newCaret += place < caret ? units : 0;
		}
		place += units;
	}
	if (allowed.toUtf8().size() > maxBytes)
		return false;
	if (allowed.size() != text.size()) {
		text = allowed;
		caret = newCaret;
	}
	return true;
}

void
ServerText::ShowText(const QString& text)
{
	if (Content() != text)
		SetContent(text);
}

static int
units_before(const QString& text, int32 bytes)
{
	return QString::fromUtf8(text.toUtf8().left(bytes)).size();
}

void
ServerText::SelectBytes(Range range)
{
	const QString text = Content();
	SetSelected(units_before(text, range.from), units_before(text, range.to));
}

ServerText::Range
ServerText::SelectedBytes() const
{
	const QString text = Content();
	const auto [from, to] = Selection();
	return {int32(text.left(from).toUtf8().size()), int32(text.left(to).toUtf8().size())};
}

void
ServerText::SendText()
{
	BMessage event;
	event.AddString("text", Content().toUtf8().constData());
	if (fSink != nullptr)
		fSink->Send(std::move(event));
}

void
ServerText::Send(const char* what)
{
	BMessage event;
	event.AddBool(what, true);
	if (fSink != nullptr)
		fSink->Send(std::move(event));
}

void
ServerText::FocusLost(const QFocusEvent& event)
{
	if (event.reason() != Qt::ActiveWindowFocusReason && event.reason() != Qt::PopupFocusReason)
		Send("left");
}

//! The toolkit would write the letter of a shortcut.
bool
ServerText::IsForWindow(const QKeyEvent& event)
{
	const Qt::KeyboardModifiers held = event.modifiers();
	return (held & (Qt::AltModifier | Qt::MetaModifier)) && !(held & Qt::ControlModifier);
}

bool
ServerText::IsEnter(const QKeyEvent& event)
{
	return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

// One line

ServerTextLine::ServerTextLine()
{
	connect(this, &QLineEdit::textEdited, this, [this] { Edited(); });
}

void
ServerTextLine::SetMode(bool editable, bool)
{
	setReadOnly(!editable);
}

void
ServerTextLine::SetColor(QPalette::ColorRole role, QColor color)
{
	QPalette changed = palette();
	changed.setColor(role, color);
	setPalette(changed);
}

QSize
ServerTextLine::sizeHint() const
{
	const QSize narrow = QLineEdit::minimumSizeHint();
	const int digits = fontMetrics().horizontalAdvance(QLatin1Char('0')) * kLineDigits;
	return QSize(narrow.width() + digits, QLineEdit::sizeHint().height());
}

void
ServerTextLine::SetContent(const QString& text)
{
	fAccepted = QString(text).replace(u'\n', u' ');
	setText(fAccepted);
}

std::pair<int, int>
ServerTextLine::Selection() const
{
	if (hasSelectedText())
		return {selectionStart(), selectionEnd()};
	return {cursorPosition(), cursorPosition()};
}

void
ServerTextLine::Edited()
{
	QString accepted = text();
	int caret = cursorPosition();
	if (!fRules.Accept(accepted, caret)) {
		accepted = fAccepted;
		caret -= text().size() - accepted.size();
	}
	if (accepted != text()) {
		setText(accepted);
		setCursorPosition(caret);
	}
	if (accepted == fAccepted)
		return;
	fAccepted = accepted;
	SendText();
}

void
ServerTextLine::keyPressEvent(QKeyEvent* event)
{
	if (IsForWindow(*event)) {
		event->ignore();
		return;
	}
	if (IsEnter(*event))
		Send("entered");
	QLineEdit::keyPressEvent(event);
}

void
ServerTextLine::focusOutEvent(QFocusEvent* event)
{
	QLineEdit::focusOutEvent(event);
	FocusLost(*event);
}

// Several lines

ServerTextArea::ServerTextArea()
{
	setFrameShape(NoFrame);
	setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
	setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
	setTabChangesFocus(true);
	setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
	connect(this, &QPlainTextEdit::textChanged, this, [this] { Edited(); });
}

int
ServerTextArea::HeightFor(int width) const
{
	const qreal margin = document()->documentMargin();
	qreal height = 2 * margin;
	for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
		QTextLayout layout(block.text(), font());
		layout.setTextOption(document()->defaultTextOption());
		layout.beginLayout();
		for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
			line.setLineWidth(width - 2 * margin);
			height += std::ceil(line.height());
		}
		layout.endLayout();
	}
	return std::ceil(height);
}

int
ServerTextArea::IdealWidth() const
{
	int width = 0;
	for (QTextBlock block = document()->begin(); block.isValid(); block = block.next())
		width = qMax(width, fontMetrics().horizontalAdvance(block.text()));
	return width + 2 * std::ceil(document()->documentMargin()) + cursorWidth() + 1;
}

void
ServerTextArea::SetMode(bool editable, bool selectable)
{
	Qt::TextInteractionFlags flags = Qt::NoTextInteraction;
	if (editable)
		flags = Qt::TextEditorInteraction;
	else if (selectable)
		flags = Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard;
	setTextInteractionFlags(flags);
}

void
ServerTextArea::SetWrap(bool wrap)
{
	setLineWrapMode(wrap ? WidgetWidth : NoWrap);
}

void
ServerTextArea::SetSide(Qt::Alignment side)
{
	QTextOption option = document()->defaultTextOption();
	option.setAlignment(side);
	document()->setDefaultTextOption(option);
}

void
ServerTextArea::SetMargins(QMargins margins)
{
	document()->setDocumentMargin(qMax(margins.left(), margins.top()));
}

void
ServerTextArea::SetColor(QPalette::ColorRole role, QColor color)
{
	QPalette changed = palette();
	changed.setColor(role, color);
	setPalette(changed);
}

QSize
ServerTextArea::sizeHint() const
{
	const int width = IdealWidth();
	return QSize(width, qMax(HeightFor(width), fontMetrics().lineSpacing() * kPlainHeightLines));
}

std::pair<int, int>
ServerTextArea::Selection() const
{
	return {textCursor().selectionStart(), textCursor().selectionEnd()};
}

void
ServerTextArea::SetSelected(int from, int to)
{
	QTextCursor cursor = textCursor();
	cursor.setPosition(from);
	cursor.setPosition(to, QTextCursor::KeepAnchor);
	setTextCursor(cursor);
}

void
ServerTextArea::Edited()
{
	if (fCorrecting)
		return;
	QScopedValueRollback guard(fCorrecting, true);
	const QString before = toPlainText();
	QString accepted = before;
	int caret = textCursor().position();
	if (!fRules.Accept(accepted, caret)) {
		document()->undo();
		return;
	}
	if (accepted != before) {
		setPlainText(accepted);
		SetSelected(caret, caret);
	}
	SendText();
}

void
ServerTextArea::keyPressEvent(QKeyEvent* event)
{
	if (IsForWindow(*event) || (isReadOnly() && IsEnter(*event)))
		event->ignore();
	else
		QPlainTextEdit::keyPressEvent(event);
}

void
ServerTextArea::focusOutEvent(QFocusEvent* event)
{
	QPlainTextEdit::focusOutEvent(event);
	FocusLost(*event);
}

} // namespace BPrivate
