#pragma once

#include <Menu.h>
#include <Messenger.h>

/*!	The presets that there are when it opens; one item that cannot be chosen says that there are none.
	Thread and owner: as every menu. */
class TPresetMenu : public BMenu {
public:
	//! `command`: of the items' messages, which go to `target` and have kPresetName.
	TPresetMenu(const char* label, uint32 command, BMessenger target);

protected:
	bool AddDynamicItem(add_state state) override;

private:
	const uint32 fCommand;
	const BMessenger fTarget;
};
