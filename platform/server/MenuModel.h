#pragma once

#include <QKeyCombination>
#include <QString>
#include <SupportDefs.h>
#include <memory>
#include <vector>

namespace BPrivate {

//! A menu as the server shows it: plain values, made by the items' side whenever something changes.
struct MenuModel {
	struct Line {
		int64 id; // of the item, never that of another one
		QString label;
		QKeyCombination key; // Qt::Key_unknown for none
		bool isSeparator = false;
		bool isEnabled = true;
		bool canBeMarked = false;
		bool isMarked = false;
		std::shared_ptr<const MenuModel> submenu;
	};

	std::vector<Line> lines;
	bool isRadio = false;
};

} // namespace BPrivate
