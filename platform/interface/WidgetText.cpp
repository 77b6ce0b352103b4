#include "interface/WidgetText.h"

#include "interface/ViewData.h"

namespace BPrivate {

QString
widget_text(const char* label)
{
	return QString::fromUtf8(label).replace(QLatin1Char('&'), QLatin1String("&&"));
}

Qt::Alignment
to_side(alignment flag)
{
	if (flag == B_ALIGN_RIGHT)
		return Qt::AlignRight | Qt::AlignAbsolute;
	return (flag == B_ALIGN_CENTER ? Qt::AlignHCenter : Qt::AlignLeft) | Qt::AlignAbsolute;
}

void
preferred_size(const BView& view, float* width, float* height)
{
	BRect bounds = view.Bounds();
	QSize size(bounds.IntegerWidth(), bounds.IntegerHeight());
	if (WidgetProxy* proxy = ViewData::Of(&view).proxy.get())
		size = proxy->PreferredSize().value_or(size);
	if (width != NULL)
		*width = size.width();
	if (height != NULL)
		*height = size.height();
}

} // namespace BPrivate
