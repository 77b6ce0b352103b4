#include "interface/MenuAccess.h"

#include "interface/WidgetText.h"

#include <ctype.h>

namespace BPrivate {

static constexpr struct {
	char byte;
	Qt::Key key;
} kControlKeys[] = {
	{B_BACKSPACE, Qt::Key_Backspace},
	{B_ENTER, Qt::Key_Return},
	{B_TAB, Qt::Key_Tab},
	{B_ESCAPE, Qt::Key_Escape},
	{B_LEFT_ARROW, Qt::Key_Left},
	{B_RIGHT_ARROW, Qt::Key_Right},
	{B_UP_ARROW, Qt::Key_Up},
	{B_DOWN_ARROW, Qt::Key_Down},
	{B_INSERT, Qt::Key_Insert},
	{B_DELETE, Qt::Key_Delete},
	{B_HOME, Qt::Key_Home},
	{B_END, Qt::Key_End},
	{B_PAGE_UP, Qt::Key_PageUp},
	{B_PAGE_DOWN, Qt::Key_PageDown},
};

//! The toolkit names a key by the upper case character.
static Qt::Key
key_of(char character)
{
	for (const auto& pair : kControlKeys) {
		if (pair.byte == character)
			return pair.key;
	}
	uint8 byte = character;
	return byte < B_SPACE ? Qt::Key_unknown : static_cast<Qt::Key>(toupper(byte));
}

static QKeyCombination
combination_of(const BMenuItem& item)
{
	uint32 modifiers;
	char shortcut = item.Shortcut(&modifiers);
	if (shortcut == 0)
		return QKeyCombination(Qt::Key_unknown);
	Qt::KeyboardModifiers held = Qt::AltModifier;
	held.setFlag(Qt::ShiftModifier, (modifiers & B_SHIFT_KEY) != 0);
	held.setFlag(Qt::ControlModifier, (modifiers & B_CONTROL_KEY) != 0);
	held.setFlag(Qt::MetaModifier, (modifiers & B_OPTION_KEY) != 0);
	return QKeyCombination(held, key_of(shortcut));
}

void
MenuAccess::AddDynamicItems(BMenu& menu)
{
	for (add_state state = B_INITIAL_ADD; menu.AddDynamicItem(state);)
		state = B_PROCESSING;
	for (int32 i = 0; i < menu.CountItems(); i++) {
		if (BMenu* submenu = menu.SubmenuAt(i))
			AddDynamicItems(*submenu);
	}
}

MenuModel
MenuAccess::ModelOf(const BMenu& menu)
{
	MenuModel model;
	model.isRadio = menu.IsRadioMode();
	for (const BMenuItem* item : menu.fItems) {
		MenuModel::Line line;
		line.id = item->fId;
		line.label = widget_text(item->Label()).replace(u'\t', u' ');
		line.key = combination_of(*item);
		line.isSeparator = dynamic_cast<const BSeparatorItem*>(item) != NULL;
		line.isEnabled = item->IsEnabled();
		line.isMarked = item->IsMarked();
		const bool isChoice = model.isRadio && !line.isSeparator && item->fSubmenu == NULL;
		line.canBeMarked = item->fCanBeMarked || isChoice;
		if (item->fSubmenu != NULL)
			line.submenu = std::make_shared<MenuModel>(ModelOf(*item->fSubmenu));
		model.lines.push_back(std::move(line));
	}
	return model;
}

BMenuItem*
MenuAccess::Find(const BMenu& menu, int64 id)
{
	for (BMenuItem* item : menu.fItems) {
		if (item->fId == id)
			return item->IsEnabled() ? item : NULL;
		BMenuItem* below = item->fSubmenu != NULL ? Find(*item->fSubmenu, id) : NULL;
		if (below != NULL)
			return below;
	}
	return NULL;
}

void
MenuAccess::Mark(BMenuItem& item)
{
	if (item.fSuper != NULL && item.fSuper->IsRadioMode())
		item.SetMarked(true);
}

} // namespace BPrivate
