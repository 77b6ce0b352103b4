#pragma once

#include <InterfaceDefs.h>
#include <QString>
#include <SupportDefs.h>

class BView;

namespace BPrivate {

//! A label as a widget takes it: an ampersand is one, not the mark of a key.
QString widget_text(const char* label);
//! Left is left in every language.
Qt::Alignment to_side(alignment flag);
//! The widget's answer for BView::GetPreferredSize(); the view's own size when the server has gone.
void preferred_size(const BView& view, float* width, float* height);

} // namespace BPrivate
