#pragma once

#include <Looper.h>

class BResources;
class BWindow;
struct app_info;

/*!	The application: the looper that the process's other messages go to, and the list of all loopers.
	Make one, on the main thread, before any window; Run() it there. The looper works on a thread of its own, while the main thread belongs to the
	display server. Owner: its maker, on the stack or by delete; it does not delete itself. */
class BApplication : public BLooper {
public:
	//! An application needs a signature "application/..."; without one it says so and leaves the process.
	explicit BApplication(const char* signature);
	//! `error` (may be NULL, then as above): B_OK; B_BAD_VALUE without a signature, B_NOT_ALLOWED for a second application.
	BApplication(const char* signature, status_t* error);
	//! Windows that are left are quit.
	~BApplication() override;
	status_t InitCheck() const;

	/*!	Runs until the application has quit and every other looper of the process has ended: windows and loopers that are left then
		are told to. Answers the looper's thread, or an error. */
	thread_id Run() override;
	//! Ends Run(); the object stays. Any thread that has the lock.
	void Quit() override;
	//! Asks the windows one after the other and quits each that agrees; false at the first that refuses.
	bool QuitRequested() override;

	//! Hooks, in this order at the start: arguments (if any), then ReadyToRun().
	virtual void ArgvReceived(int32 argc, char** argv);
	virtual void RefsReceived(BMessage* message);
	virtual void ReadyToRun();
	void MessageReceived(BMessage* message) override;
	void DispatchMessage(BMessage* message, BHandler* handler) override;
	/*!	Knows "Window" and "Looper" by index, reverse index and name (the rest of the message is that looper's), their
		numbers, and "Name". */
	BHandler* ResolveSpecifier(BMessage* message, int32 index, BMessage* specifier, int32 form,
		const char* property) override;
	status_t GetSupportedSuites(BMessage* data) override;

	// In the order of their making; NULL when out of range. Any thread, but lock what you get.

	int32 CountWindows() const;
	BWindow* WindowAt(int32 index) const;
	int32 CountLoopers() const;
	BLooper* LooperAt(int32 index) const;
	bool IsLaunching() const;
	const char* Signature() const;
	status_t GetAppInfo(app_info* info) const;
	/*!	The resources of the program's own file, opened at the first call; NULL if they cannot be. The application kit owns
		them; one thread at a time uses them. */
	static BResources* AppResources();

private:
	void Init(const char* signature, status_t* error);
	void PostArguments();
	bool QuitAllWindows(bool force);
	BLooper* FindLooper(BMessage* specifier, int32 form, bool windows, status_t* error);
	void QuitOtherLoopers();
	static status_t ApplicationThread(void* application);
	void CloseQueue();

	char* fSignature = nullptr;
	status_t fInitStatus = B_OK;
	std::atomic<bool> fLaunching{true};
};

//! The process's application, NULL without one.
extern BApplication* be_app;
//! Aimed at it.
extern BMessenger be_app_messenger;
