#pragma once

#include <InterfaceDefs.h>
#include <QGroupBox>

class QStyleOptionGroupBox;

namespace BPrivate {

/*!	A group box with the platform's borders, or with a view in the place of its label. The pointer is
	the affair of what lies beneath. Server thread only. */
class ServerBox : public QGroupBox {
public:
	ServerBox();

	void SetBorder(border_style border);
	//! Of a view that is the label; an empty one for none.
	void SetLabelPlace(QRect place);
	//! What the border leaves of a box of that size.
	QRect InnerRect(QSize size) const;

	QSize sizeHint() const override;
	QSize minimumSizeHint() const override { return sizeHint(); }

protected:
	void paintEvent(QPaintEvent* event) override;

private:
	QStyleOptionGroupBox Option(QSize size) const;
	QRect LabelRect(const QStyleOptionGroupBox& option) const;
	QRect LineRect(const QStyleOptionGroupBox& option) const;

	border_style fBorder = B_FANCY_BORDER;
	QRect fLabelPlace;
};

} // namespace BPrivate
