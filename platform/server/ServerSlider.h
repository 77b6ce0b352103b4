#pragma once

#include <QSlider>
#include <QStyle>

namespace BPrivate {

class ProxySink;

/*!	A slider with its label above. The events that it sends: "value" (int32), "moved" (bool): the value has changed; "done" (bool): the
	user has let go of it, or has used a key or the wheel. Server thread only. */
class ServerSlider : public QSlider {
public:
	ServerSlider();

	void SetSink(ProxySink* sink) { fSink = sink; }
	void SetLabel(const QString& label);
	//! What the program says; while the user holds the thumb, the user's value counts.
	void SetProgramValue(int value);

	QSize sizeHint() const override;
	QSize minimumSizeHint() const override;

protected:
	void initStyleOption(QStyleOptionSlider* option) const override;
	void paintEvent(QPaintEvent* event) override;
	void mousePressEvent(QMouseEvent* event) override;
	void mouseReleaseEvent(QMouseEvent* event) override;
	void changeEvent(QEvent* event) override;
	void sliderChange(SliderChange change) override;

private:
	QRect PartRect(QStyle::SubControl part) const;
	int ValueAt(int x) const;
	int LabelHeight() const;
	void LetGo();
	void Send(bool moved, bool done);

	ProxySink* fSink = nullptr;
	QString fLabel;
	bool fHeld = false;
	bool fMoved = false; // since the user has taken hold of it
	int fProgramValue = 0;
};

} // namespace BPrivate
