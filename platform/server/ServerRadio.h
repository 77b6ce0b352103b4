#pragma once

#include <QRadioButton>

namespace BPrivate {

/*!	A radio button that excludes those of its own group only, although all controls of a window are
	siblings here. Server thread only. */
class ServerRadio : public QRadioButton {
public:
	ServerRadio();

	//! The group is the window's; known by any number.
	void SetGroup(quint64 number);
	//! Leaves the others alone.
	void SetOn(bool on);

protected:
	bool event(QEvent* event) override;
};

} // namespace BPrivate
