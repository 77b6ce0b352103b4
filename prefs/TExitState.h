#pragma once

#include <mutex>

#include "framework/TArchivable.h"

/*!	What the add-on remembers of its last run.
	Thread: any, a lock inside. The order of the virtual operations is shared with the maker's other applications. */
class TExitState : public merion::TArchivable {
public:
	/*!	Writes the running program's version, whatever Version() says: a file names the program that wrote it. */
	bool Archive(BMessage* archive) const override;
	bool Unarchive(const BMessage& archive) override;

	//! Version text of the program that wrote the file; empty on a first run.
	std::string Version() const;
	//! The display window's frame, screen coordinates.
	BRect WindowFrame() const;
	void SetWindowFrame(BRect frame);

private:
	mutable std::mutex fLock;
	std::string fVersion;
	BRect fWindowFrame{5, 24, 300, 100};
};

//! The one record of the running add-on; the plug-in object makes and deletes it.
extern TExitState* gExitState;
