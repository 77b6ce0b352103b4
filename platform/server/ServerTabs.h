#pragma once

#include <QTabBar>
#include <QWidget>

class QStyleOptionTabWidgetFrame;

namespace BPrivate {

class ProxySink;

/*!	A row of tabs and the frame around what they choose, which is other widgets' affair. The event
	that it sends: "tab" (int32), the index of the one that the user has chosen. Server thread only. */
class ServerTabs : public QWidget {
public:
	ServerTabs();

	void SetSink(ProxySink* sink);
	void Append();
	void Remove(int index);
	void Choose(int index);
	void Show(int index, const QString& label, bool enabled);

	//! What tabs and frame leave of that size.
	QRect InnerRect(QSize size) const;
	int TabHeight() const;
	//! Of all tabs in a row.
	int TabsWidth() const;
	QRect TabRect(int index) const;

protected:
	void paintEvent(QPaintEvent* event) override;
	void resizeEvent(QResizeEvent* event) override;
	void changeEvent(QEvent* event) override;

private:
	QStyleOptionTabWidgetFrame FrameOption(QSize size) const;
	void PlaceBar();
	void UserChose(int index);

	QTabBar fBar;
	ProxySink* fSink = nullptr;
	bool fByProgram = false;
};

} // namespace BPrivate
