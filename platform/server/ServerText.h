#pragma once

#include <QLineEdit>
#include <QPlainTextEdit>
#include <SupportDefs.h>
#include <string>

namespace BPrivate {

class ProxySink;

//! What the user may put into a text.
struct TextRules {
	std::u32string disallowed;
	int32 maxBytes = INT32_MAX; // of UTF-8

	//! Takes out what is disallowed; `caret`, an index, moves along. False: it would be too long.
	bool Accept(QString& text, int& caret) const;
};

/*!	What a text view needs of the widget that stands for it. The events that it sends: "text"
	(string): the user has changed it; "entered" (bool): the Enter key; "left" (bool): the focus has
	gone to another control. Server thread only. */
class ServerText {
public:
	//! In bytes of UTF-8.
	struct Range {
		int32 from;
		int32 to;
	};

	virtual ~ServerText() = default;
	static ServerText& Of(QWidget& widget) { return dynamic_cast<ServerText&>(widget); }

	void SetSink(ProxySink* sink) { fSink = sink; }
	void SetRules(const TextRules& rules) { fRules = rules; }
	//! Nothing happens when it is the same: that would disturb an input method.
	void ShowText(const QString& text);
	void SelectBytes(Range range);
	Range SelectedBytes() const;

	virtual void SetMode(bool editable, bool selectable) = 0;
	virtual void SetWrap(bool wrap) = 0;
	virtual void SetSide(Qt::Alignment side) = 0;
	virtual void SetMargins(QMargins margins) = 0;
	virtual void SetColor(QPalette::ColorRole role, QColor color) = 0;
	virtual void ScrollToSelection() = 0;

protected:
	virtual QString Content() const = 0;
	virtual void SetContent(const QString& text) = 0;
	//! From, to as the toolkit counts.
	virtual std::pair<int, int> Selection() const = 0;
	virtual void SetSelected(int from, int to) = 0;

	void SendText();
	void Send(const char* what);
	//! Of the control to which it has gone, not of the window.
	void FocusLost(const QFocusEvent& event);
	//! Not the text's, but the window's.
	static bool IsForWindow(const QKeyEvent& event);
	static bool IsEnter(const QKeyEvent& event);

	TextRules fRules;

private:
	ProxySink* fSink = nullptr;
};

//! One line.
class ServerTextLine : public QLineEdit, public ServerText {
public:
	ServerTextLine();

	void SetMode(bool editable, bool selectable) override;
	void SetWrap(bool) override { }
	void SetSide(Qt::Alignment side) override { setAlignment(side | Qt::AlignVCenter); }
	void SetMargins(QMargins margins) override { setTextMargins(margins); }
	void SetColor(QPalette::ColorRole role, QColor color) override;
	void ScrollToSelection() override { }

	QSize sizeHint() const override;

protected:
	QString Content() const override { return text(); }
	void SetContent(const QString& text) override;
	std::pair<int, int> Selection() const override;
	void SetSelected(int from, int to) override { setSelection(from, to - from); }
	void keyPressEvent(QKeyEvent* event) override;
	void focusOutEvent(QFocusEvent* event) override;

private:
	void Edited();

	QString fAccepted; // as it was before the user's newest change
};

//! Several lines. Border and scroll bars belong to the view around it, if there is one.
class ServerTextArea : public QPlainTextEdit, public ServerText {
public:
	ServerTextArea();

	//! What the text takes up at that width, margins included.
	int HeightFor(int width) const;
	//! Of the longest line that is not broken.
	int IdealWidth() const;

	void SetMode(bool editable, bool selectable) override;
	void SetWrap(bool wrap) override;
	void SetSide(Qt::Alignment side) override;
	void SetMargins(QMargins margins) override;
	void SetColor(QPalette::ColorRole role, QColor color) override;
	void ScrollToSelection() override { ensureCursorVisible(); }

	QSize sizeHint() const override;

protected:
	QString Content() const override { return toPlainText(); }
	void SetContent(const QString& text) override { setPlainText(text); }
	std::pair<int, int> Selection() const override;
	void SetSelected(int from, int to) override;
	void keyPressEvent(QKeyEvent* event) override;
	void focusOutEvent(QFocusEvent* event) override;

private:
	void Edited();

	bool fCorrecting = false;
};

} // namespace BPrivate
