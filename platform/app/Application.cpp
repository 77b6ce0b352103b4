#include <Application.h>

#include "app/ApplicationRegistry.h"
#include "app/LooperAccess.h"
#include "app/LooperList.h"
#include "app/MainThreadService.h"
#include "app/MessageAccess.h"
#include <Message.h>
#include <MessageQueue.h>
#include <PropertyInfo.h>
#include <Resources.h>
#include <Roster.h>
#include <fstream>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <string>

using namespace BPrivate;

BApplication* be_app = NULL;
BMessenger be_app_messenger;
MainThreadService* BPrivate::gMainThreadService = nullptr;

BApplication::BApplication(const char* signature) : BLooper("application")
{
	Init(signature, NULL);
}

BApplication::BApplication(const char* signature, status_t* error) : BLooper("application")
{
	Init(signature, error);
}

void
BApplication::Init(const char* signature, status_t* error)
{
	if (signature == NULL || strncasecmp(signature, "application/", 12) != 0
		|| signature[12] == '\0' || strlen(signature) >= B_MIME_TYPE_LENGTH)
		fInitStatus = B_BAD_VALUE;
	else if (!register_application(signature, LooperAccess::Port(this)->Id()))
		fInitStatus = B_NOT_ALLOWED;
	if (error != NULL)
		*error = fInitStatus;
	if (fInitStatus != B_OK) {
		if (error == NULL) {
			fprintf(stderr, "the application cannot be made: its signature is \"%s\"%s\n",
				signature != NULL ? signature : "",
				fInitStatus == B_NOT_ALLOWED ? ", but there is one already" : "");
			exit(1);
		}
		return;
	}
	fSignature = strdup(signature);
	const char* leaf = strrchr(executable_path(), '/');
	SetName(leaf != NULL ? leaf + 1 : executable_path());
	be_app = this;
	be_app_messenger = BMessenger(NULL, this);
	if (gMainThreadService != nullptr)
		gMainThreadService->Start();
	PostArguments();
	PostMessage(B_READY_TO_RUN);
}

BApplication::~BApplication()
{
	Lock();
	if (be_app == this) {
		QuitAllWindows(true);
		be_app = NULL;
		be_app_messenger = BMessenger();
		unregister_application(LooperAccess::Port(this)->Id());
	}
	free(fSignature);
}

status_t
BApplication::InitCheck() const
{
	return fInitStatus;
}

void
BApplication::PostArguments()
{
	std::ifstream file("/proc/self/cmdline", std::ios::binary);
	BMessage message(B_ARGV_RECEIVED);
	int32 count = 0;
	for (std::string argument; std::getline(file, argument, '\0'); count++)
		message.AddString("argv", argument.c_str());
	message.AddInt32("argc", count);
	char* folder = realpath(".", NULL);
	message.AddString("cwd", folder != NULL ? folder : "");
	free(folder);
	if (count > 1)
		PostMessage(&message);
}

// Running

thread_id
BApplication::Run()
{
	if (fInitStatus != B_OK)
		return fInitStatus;
	const thread_id thread = StartThread(ApplicationThread, "application");
	if (thread < 0)
		return thread;
	while (IsLocked())
		Unlock();
	if (const status_t error = resume_thread(thread); error != B_OK) {
		LooperList::ThreadEnds(thread);
		return error;
	}
	if (gMainThreadService != nullptr)
		gMainThreadService->Run();
	wait_for_thread(thread, NULL);
	return thread;
}

status_t
BApplication::ApplicationThread(void* data)
{
	BApplication* application = static_cast<BApplication*>(data);
	const thread_id self = find_thread(NULL);
	application->Loop();
	application->CloseQueue();
	while (application->IsLocked())
		application->Unlock();
	application->QuitOtherLoopers();
	LooperList::WaitForThreads(self);
	if (gMainThreadService != nullptr)
		gMainThreadService->Stop();
	LooperList::ThreadEnds(self);
	return B_OK;
}

/*	The application outlives its loop: who waits for an answer learns that there is none. */
void
BApplication::CloseQueue()
{
	LooperAccess::Port(this)->Close();
	delete DetachCurrentMessage();
	while (BMessage* message = fQueue->NextMessage())
		delete message;
}

/*	The real system ends a process whatever its loopers do; here they have to leave, because the display server must outlive
	the last thread that draws. */
void
BApplication::QuitOtherLoopers()
{
	QuitAllWindows(true);
	for (const LooperList::Item& item : LooperList::Loopers()) {
		const std::shared_ptr<MessagePort> port = LooperList::PortOf(item.looper);
		if (item.looper != this && port != nullptr && port->Thread() >= 0)
			port->PostQuit();
	}
}

void
BApplication::Quit()
{
	if (!Lock())
		return;
	if (LooperAccess::OfThisThread() == this)
		fTerminating = true;
	else if (fRunCalled)
		LooperAccess::Port(this)->PostQuit();
	else
		fprintf(stderr, "the application was told to quit before it ran\n");
	Unlock();
}

bool
BApplication::QuitRequested()
{
	return QuitAllWindows(false);
}

bool
BApplication::QuitAllWindows(bool force)
{
	for (const LooperList::Item& item : LooperList::Windows()) {
		BLooper* window = item.looper;
		if (window == this || !window->Lock())
			continue;
		if (!force && !window->QuitRequested()) {
			window->Unlock();
			return false;
		}
		window->Quit();
	}
	return true;
}

// Messages

void
BApplication::ArgvReceived(int32, char**)
{ }

void
BApplication::RefsReceived(BMessage*)
{ }

void
BApplication::ReadyToRun()
{ }

static void
deliver_arguments(BApplication* application, const BMessage* message)
{
	std::vector<char*> arguments;
	const char* argument;
	for (int32 i = 0; message->FindString("argv", i, &argument) == B_OK; i++)
		arguments.push_back(const_cast<char*>(argument));
	const int32 count = int32(arguments.size());
	arguments.push_back(NULL);
	application->ArgvReceived(count, arguments.data());
}

void
BApplication::DispatchMessage(BMessage* message, BHandler* handler)
{
	if (handler != this) {
		BLooper::DispatchMessage(message, handler);
		return;
	}
	switch (message->what) {
		case B_ARGV_RECEIVED:
			deliver_arguments(this, message);
			break;
		case B_REFS_RECEIVED:
			RefsReceived(message);
			break;
		case B_READY_TO_RUN:
			if (fLaunching.exchange(false))
				ReadyToRun();
			break;
		default:
			BLooper::DispatchMessage(message, handler);
			break;
	}
}

// The lists

int32
BApplication::CountWindows() const
{
	return int32(LooperList::Windows().size());
}

BWindow*
BApplication::WindowAt(int32 index) const
{
	const std::vector<LooperList::Item> windows = LooperList::Windows();
	return index >= 0 && size_t(index) < windows.size() ? windows[index].window : NULL;
}

int32
BApplication::CountLoopers() const
{
	return int32(LooperList::Loopers().size());
}

BLooper*
BApplication::LooperAt(int32 index) const
{
	const std::vector<LooperList::Item> loopers = LooperList::Loopers();
	return index >= 0 && size_t(index) < loopers.size() ? loopers[index].looper : NULL;
}

bool
BApplication::IsLaunching() const
{
	return fLaunching;
}

const char*
BApplication::Signature() const
{
	return fSignature;
}

status_t
BApplication::GetAppInfo(app_info* info) const
{
	if (info == NULL)
		return B_BAD_VALUE;
	if (fInitStatus != B_OK)
		return B_NO_INIT;
	info->thread = Thread();
	info->team = Team();
	snprintf(info->signature, sizeof(info->signature), "%s", fSignature);
	return get_ref_for_path(executable_path(), &info->ref);
}

BResources*
BApplication::AppResources()
{
	static BResources sResources(executable_path());
	return sResources.InitCheck() == B_OK ? &sResources : NULL;
}
