#pragma once

#include "server/ServerSlider.h"

#include <QWidget>
#include <SupportDefs.h>

class QSpinBox;

namespace BPrivate {

//! What a colour becomes when one component of it goes from 0 to 255; for the mouse and the arrow keys. Server thread only.
class ColorRamp : public ServerSlider {
public:
	//! `shift`: of the component, in 0xRRGGBB00.
	explicit ColorRamp(int shift);

	//! Sent by the user's changes only.
	void SetColor(uint32 color);
	void SetPreferredSize(QSize size);
	QSize sizeHint() const override { return fSize; }
	QSize minimumSizeHint() const override;

protected:
	void paintEvent(QPaintEvent* event) override;

private:
	QColor ColorAt(uint32 component) const;

	const int fShift;
	uint32 fColor = 0;
	QSize fSize;
};

/*!	Three ramps, each with its number. The event that it sends: "value" (int32), the colour as 0xRRGGBB00. Server thread only. */
class ServerColorControl : public QWidget {
public:
	ServerColorControl();

	void SetSink(ProxySink* sink) { fSink = sink; }
	void SetColor(uint32 color);
	//! Of the three together.
	void SetRampSize(QSize size);

protected:
	bool eventFilter(QObject* object, QEvent* event) override;

private:
	struct Part {
		ColorRamp* ramp;
		QSpinBox* number;
	};

	void AddPart(int index);
	void PartChanged(int index, int value);

	ProxySink* fSink = nullptr;
	Part fParts[3];
	uint32 fColor = 0;
};

} // namespace BPrivate
