#pragma once

#include <QLabel>

namespace BPrivate {

/*!	The label of a text control or menu field, at the left of what it labels. The pointer is the
	affair of what lies beneath. Server thread only. */
class ServerFieldLabel : public QLabel {
public:
	ServerFieldLabel();

	//! What it labels, for those who cannot see where it stands.
	void SetPart(QWidget* part) { setBuddy(part); }
	void SetLabel(const QString& label);

	//! Where the labelled part begins.
	void SetDivider(int divider);

protected:
	void paintEvent(QPaintEvent* event) override;

private:
	QString fLabel;
	int fDivider = 0;
};

} // namespace BPrivate
