#pragma once

#include <cmath>
#include <string>
#include <vector>

#include <View.h>

#include "framework/label_controls.h"

inline std::string
name_of(BView* view)
{
	return view->Name() != nullptr ? view->Name() : "(no name)";
}

//! What is wrong with the labels in a view whose window is locked: cut ones, covered ones, what sticks out. Empty when all is well.
inline std::string
label_faults(BView* view)
{
	std::string faults;
	if (merion::has_label(view)) {
		float width = 0;
		float height = 0;
		view->GetPreferredSize(&width, &height);
		if (view->Bounds().Width() < std::floor(width)
			|| view->Bounds().Height() < std::floor(height))
			faults += name_of(view) + " is cut\n";
		return faults;
	}
	for (BView* page : merion::pages_of(view))
		faults += label_faults(page);
	if (view->Bounds().Width() < merion::own_label_width(view))
		faults += name_of(view) + " cuts its own label\n";
	if (!merion::is_container(view))
		return faults;
	for (int32 i = 0; BView* child = view->ChildAt(i); i++) {
		if (!view->Bounds().Contains(child->Frame()))
			faults += name_of(child) + " sticks out of " + name_of(view) + "\n";
		for (int32 j = 0; j < i; j++) {
			if (child->Frame().Intersects(view->ChildAt(j)->Frame()))
				faults += name_of(child) + " covers " + name_of(view->ChildAt(j)) + "\n";
		}
		faults += label_faults(child);
	}
	return faults;
}
