#include "interface/ViewData.h"

#include <AppDefs.h>
#include <Message.h>
#include <PropertyInfo.h>
#include <string.h>

using namespace BPrivate;

// The scripting of windows and views: their frames, whether they are hidden, a window's title, and
// the views in them.

static const property_info kWindowProperties[] = {
	{"Frame", {B_GET_PROPERTY, B_SET_PROPERTY, 0}, {B_DIRECT_SPECIFIER, 0},
		"The window's frame on the screen.", 0, {B_RECT_TYPE}},
	{"Title", {B_GET_PROPERTY, B_SET_PROPERTY, 0}, {B_DIRECT_SPECIFIER, 0}, "The window's title.",
		0, {B_STRING_TYPE}},
	{"Hidden", {B_GET_PROPERTY, B_SET_PROPERTY, 0}, {B_DIRECT_SPECIFIER, 0},
		"Whether the window is hidden.", 0, {B_BOOL_TYPE}},
	{"Minimize", {B_GET_PROPERTY, B_SET_PROPERTY, 0}, {B_DIRECT_SPECIFIER, 0},
		"Whether the window is minimized.", 0, {B_BOOL_TYPE}},
	{"View", {B_COUNT_PROPERTIES, 0}, {B_DIRECT_SPECIFIER, 0}, "The number of views in the window.",
		0, {B_INT32_TYPE}},
	{"View", {}, {B_INDEX_SPECIFIER, B_REVERSE_INDEX_SPECIFIER, B_NAME_SPECIFIER, 0},
		"A view of the window, by name at any depth.", 0, {}},
	{},
};

static const property_info kViewProperties[] = {
	{"Frame", {B_GET_PROPERTY, B_SET_PROPERTY, 0}, {B_DIRECT_SPECIFIER, 0},
		"The view's frame in its parent.", 0, {B_RECT_TYPE}},
	{"Hidden", {B_GET_PROPERTY, B_SET_PROPERTY, 0}, {B_DIRECT_SPECIFIER, 0},
		"Whether the view is hidden.", 0, {B_BOOL_TYPE}},
	{"View", {B_COUNT_PROPERTIES, 0}, {B_DIRECT_SPECIFIER, 0}, "The number of views in the view.",
		0, {B_INT32_TYPE}},
	{"View", {}, {B_INDEX_SPECIFIER, B_REVERSE_INDEX_SPECIFIER, B_NAME_SPECIFIER, 0},
		"A view in the view, by name at any depth.", 0, {}},
	{},
};

//! The view that a specifier of the property "View" means, or NULL.
static BView*
specified_view(BView* parent, BMessage* specifier, int32 form)
{
	int32 index = specifier->GetInt32("index", -1);
	switch (form) {
		case B_INDEX_SPECIFIER:
			return parent->ChildAt(index);
		case B_REVERSE_INDEX_SPECIFIER:
			return parent->ChildAt(parent->CountChildren() - index);
		case B_NAME_SPECIFIER: {
			BView* found = parent->FindView(specifier->GetString("name", NULL));
			return found != parent ? found : NULL;
		}
		default:
			return NULL;
	}
}

static void
reply_error(BMessage* message, status_t error, const char* text)
{
	BMessage reply(B_MESSAGE_NOT_UNDERSTOOD);
	reply.AddInt32("error", error);
	reply.AddString("message", text);
	message->SendReply(&reply);
}

/*!	For a property that names a view: that view, with the specifier popped; NULL when it is not
	there and the message answered. */
static BHandler*
resolve_view(BView* parent, BMessage* message, BMessage* specifier, int32 form)
{
	BView* view = specified_view(parent, specifier, form);
	if (view == NULL) {
		bool byName = form == B_NAME_SPECIFIER;
		reply_error(message, byName ? B_NAME_NOT_FOUND : B_BAD_INDEX, "Cannot find the view.");
		return NULL;
	}
	message->PopSpecifier();
	return view;
}

static status_t
add_suite(BMessage* data, const char* suite, const property_info* properties)
{
	if (data == NULL)
		return B_BAD_VALUE;
	status_t status = data->AddString("suites", suite);
	BPropertyInfo info(properties);
	return status == B_OK ? data->AddFlat("messages", &info) : status;
}

BHandler*
BWindow::ResolveSpecifier(
	BMessage* message, int32 index, BMessage* specifier, int32 form, const char* property)
{
	BPropertyInfo info(kWindowProperties);
	if (info.FindMatch(message, index, specifier, form, property) < 0)
		return BLooper::ResolveSpecifier(message, index, specifier, form, property);
	if (strcmp(property, "View") == 0 && form != B_DIRECT_SPECIFIER)
		return resolve_view(fData->root, message, specifier, form);
	return this;
}

status_t
BWindow::GetSupportedSuites(BMessage* data)
{
	status_t status = add_suite(data, "suite/vnd.Be-window", kWindowProperties);
	return status == B_OK ? BLooper::GetSupportedSuites(data) : status;
}

//! Puts the value of a property into the reply; false if there is none of that name.
static bool
get_window_property(BWindow* window, const char* property, BMessage& reply)
{
	if (strcmp(property, "Frame") == 0)
		reply.AddRect("result", window->Frame());
	else if (strcmp(property, "Title") == 0)
		reply.AddString("result", window->Title());
	else if (strcmp(property, "Hidden") == 0)
		reply.AddBool("result", window->IsHidden());
	else if (strcmp(property, "Minimize") == 0)
		reply.AddBool("result", window->IsMinimized());
	else
		return false;
	return true;
}

static void
set_window_frame(BWindow* window, BRect frame)
{
	window->MoveTo(frame.LeftTop());
	window->ResizeTo(frame.Width(), frame.Height());
}

/*!	The error of a value that is missing or has another type; B_NAME_NOT_FOUND too for a property
	that there is not. */
static status_t
set_window_property(BWindow* window, const char* property, const BMessage& message)
{
	BRect frame;
	const char* title;
	bool flag;
	status_t status = B_NAME_NOT_FOUND;
	if (strcmp(property, "Frame") == 0) {
		if ((status = message.FindRect("data", &frame)) == B_OK)
			set_window_frame(window, frame);
	} else if (strcmp(property, "Title") == 0) {
		if ((status = message.FindString("data", &title)) == B_OK)
			window->SetTitle(title);
	} else if (strcmp(property, "Hidden") == 0) {
		status = message.FindBool("data", &flag);
		if (status == B_OK && flag != window->IsHidden())
			flag ? window->Hide() : window->Show();
	} else if (strcmp(property, "Minimize") == 0) {
		if ((status = message.FindBool("data", &flag)) == B_OK)
			window->Minimize(flag);
	}
	return status;
}

static bool
get_view_property(BView* view, const char* property, BMessage& reply)
{
	if (strcmp(property, "Frame") == 0)
		reply.AddRect("result", view->Frame());
	else if (strcmp(property, "Hidden") == 0)
		reply.AddBool("result", view->IsHidden());
	else
		return false;
	return true;
}

static status_t
set_view_property(BView* view, const char* property, const BMessage& message)
{
	BRect frame;
	bool flag;
	status_t status = B_NAME_NOT_FOUND;
	if (strcmp(property, "Frame") == 0) {
		if ((status = message.FindRect("data", &frame)) == B_OK) {
			view->MoveTo(frame.LeftTop());
			view->ResizeTo(frame.Width(), frame.Height());
		}
	} else if (strcmp(property, "Hidden") == 0) {
		status = message.FindBool("data", &flag);
		if (status == B_OK && flag != view->IsHidden(view))
			flag ? view->Hide() : view->Show();
	}
	return status;
}

/*!	Answers a get, set or count of one of the properties; false when it is none of them. `parent`:
	whose children are counted. */
template<typename Object, typename Get, typename Set>
static bool
answer_property(Object* object, BView* parent, BMessage* message, const property_info* properties,
	Get get, Set set)
{
	BMessage specifier;
	int32 index;
	int32 form;
	const char* property;
	if (!message->HasSpecifiers()
		|| message->GetCurrentSpecifier(&index, &specifier, &form, &property) != B_OK)
		return false;
	BPropertyInfo info(properties);
	if (form != B_DIRECT_SPECIFIER
		|| info.FindMatch(message, index, &specifier, form, property) < 0)
		return false;
	BMessage reply(B_REPLY);
	status_t status = B_OK;
	if (message->what == B_COUNT_PROPERTIES)
		reply.AddInt32("result", parent->CountChildren());
	else if (message->what == B_SET_PROPERTY)
		status = set(object, property, *message);
	else if (message->what != B_GET_PROPERTY || !get(object, property, reply))
		return false;
	if (status != B_OK) {
		reply_error(message, status, "The value of the property is missing or of another type.");
		return true;
	}
	reply.AddInt32("error", B_OK);
	message->SendReply(&reply);
	return true;
}

void
BWindow::MessageReceived(BMessage* message)
{
	if (!answer_property(this, fData->root, message, kWindowProperties, get_window_property,
			set_window_property))
		BLooper::MessageReceived(message);
}

BHandler*
BView::ResolveSpecifier(
	BMessage* message, int32 index, BMessage* specifier, int32 form, const char* property)
{
	BPropertyInfo info(kViewProperties);
	if (info.FindMatch(message, index, specifier, form, property) < 0)
		return BHandler::ResolveSpecifier(message, index, specifier, form, property);
	if (strcmp(property, "View") == 0 && form != B_DIRECT_SPECIFIER)
		return resolve_view(this, message, specifier, form);
	return this;
}

status_t
BView::GetSupportedSuites(BMessage* data)
{
	status_t status = add_suite(data, "suite/vnd.Be-view", kViewProperties);
	return status == B_OK ? BHandler::GetSupportedSuites(data) : status;
}

void
BView::MessageReceived(BMessage* message)
{
	if (!answer_property(
			this, this, message, kViewProperties, get_view_property, set_view_property))
		BHandler::MessageReceived(message);
}
