#include "interface/ViewData.h"
#include "interface/WidgetText.h"
#include "support/ArchiveFields.h"

#include <QLabel>
#include <QPainter>
#include <QStyle>
#include <StringView.h>
#include <stdlib.h>
#include <string.h>

using namespace BPrivate;

namespace {

//! A label that says by an ellipsis that there is more. The pointer is not its affair, but the views'.
class ServerLabel : public QLabel {
public:
	ServerLabel()
	{
		setTextFormat(Qt::PlainText);
		setAttribute(Qt::WA_TransparentForMouseEvents);
	}

	QSize minimumSizeHint() const override { return sizeHint(); }

protected:
	void paintEvent(QPaintEvent*) override
	{
		QPainter painter(this);
		const QString fitting = fontMetrics().elidedText(text(), Qt::ElideRight, width());
		style()->drawItemText(&painter, rect(), alignment() | Qt::TextSingleLine, palette(),
			isEnabled(), fitting, foregroundRole());
	}
};

} // namespace

BStringView::BStringView(
	BRect frame, const char* name, const char* text, uint32 resizingMode, uint32 flags)
	: BView(frame, name, resizingMode, flags),
	  fText(NULL),
	  fAlignment(B_ALIGN_LEFT)
{
	Init();
	SetText(text);
}

BStringView::BStringView(BMessage* data) : BView(data), fText(NULL), fAlignment(B_ALIGN_LEFT)
{
	const BMessage& archive = archive_or_empty(data);
	Init();
	SetText(archive.GetString("_text"));
	SetAlignment(alignment(archived_choice(archive, "_align", B_ALIGN_CENTER, B_ALIGN_LEFT)));
	// every view is archived with a colour: the one that nobody has chosen is not shown, but the desktop's
	if (HighColor() != DrawState().high)
		ShowColor();
}

void
BStringView::Init()
{
	ViewData::Of(this).SetProxy(std::make_unique<WidgetProxy>(
		WidgetProxy::MakerOf<ServerLabel>([](ServerLabel*, ProxySink*) {}), [](BMessage*) {}));
}

BArchivable*
BStringView::Instantiate(BMessage* data)
{
	return validate_instantiation(data, "BStringView") ? new BStringView(data) : NULL;
}

status_t
BStringView::Archive(BMessage* data, bool deep) const
{
	ArchiveWriter writer(data, BView::Archive(data, deep));
	writer.String("_text", fText);
	writer.Int32("_align", fAlignment);
	return writer.Status();
}

BStringView::~BStringView()
{
	free(fText);
}

void
BStringView::GetPreferredSize(float* width, float* height)
{
	preferred_size(*this, width, height);
}

void
BStringView::SetHighColor(rgb_color color)
{
	BView::SetHighColor(color);
	ShowColor();
}

void
BStringView::ShowColor()
{
	const rgb_color color = HighColor();
	ViewData::Of(this).proxy->Adjust<ServerLabel>([color](ServerLabel& label) {
		QPalette palette = label.palette();
		palette.setColor(QPalette::WindowText, QColor(color.red, color.green, color.blue));
		label.setPalette(palette);
	});
}

void
BStringView::SetText(const char* text)
{
	char* copy = text != NULL ? strdup(text) : NULL;
	free(fText);
	fText = copy;
	ViewData::Of(this).proxy->Adjust<ServerLabel>(
		[shown = QString::fromUtf8(text).replace(u'\n', u' ')](ServerLabel& label) {
			if (label.text() != shown)
				label.setText(shown);
		});
}

const char*
BStringView::Text() const
{
	return fText;
}

void
BStringView::SetAlignment(alignment flag)
{
	fAlignment = flag;
	ViewData::Of(this).proxy->Adjust<ServerLabel>([side = to_side(flag)](ServerLabel& label) {
		label.setAlignment(side | Qt::AlignVCenter);
	});
}

alignment
BStringView::Alignment() const
{
	return fAlignment;
}
