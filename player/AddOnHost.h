#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

#include <OS.h>
#include <image.h>

class GeneralPlugin;
struct PluginConstructorStruct;

/*!	Loads the add-ons of a folder, drives them and puts them away.
	Thread: the public calls may come from any thread and never wait. Every call of a plug-in is made on one thread, the
	host's own, with no lock held: an add-on may wait for any looper in it. The listener is called on that thread too. */
class AddOnHost {
public:
	struct Info {
		std::string name;
		std::string infoLine;
		bool hasAbout;
		bool hasPreferences;
	};

	class Listener {
	public:
		virtual ~Listener() = default;
		//! All add-ons are loaded and have been told to show themselves; an add-on's index stays what it is here.
		virtual void AddOnsLoaded(const std::vector<Info>& addOns) = 0;
		virtual void AddOnFailed(const std::string& path, const std::string& reason) = 0;
		//! The last plug-in object is deleted, its code unloaded.
		virtual void AddOnsGone() = 0;
	};

	//! Loads every gen_*.so of `folder`, in the order of their names.
	AddOnHost(const std::string& folder, Listener& listener);
	//! Quit(), and waits for it.
	~AddOnHost();

	void Show(size_t index);
	void ShowAbout(size_t index);
	void ShowPreferences(size_t index);
	void Quit();

	//! The add-on folder of this program: "../lib/qubo/add-ons" from its own, else "../add-ons" as in a build.
	static std::string DefaultFolder();

private:
	enum Action { kShow, kAbout, kPreferences, kQuit };
	struct Request {
		Action action;
		size_t index = 0;
	};
	struct AddOn {
		image_id image;
		GeneralPlugin* plugin;
	};

	void Post(const Request& request);
	static status_t ThreadEntry(void* self);
	void Run();
	void LoadAll();
	void Load(const std::string& path);
	GeneralPlugin* Make(
		image_id image, const std::string& path, PluginConstructorStruct& construct);
	std::vector<Info> Describe() const;
	Request NextRequest();
	void Execute(const Request& request);
	void PutAway();

	std::string fFolder;
	Listener& fListener;
	thread_id fThread;

	std::mutex fLock; // of the two below
	std::condition_variable fPosted;
	std::deque<Request> fRequests;

	std::vector<AddOn> fAddOns; // the host's thread only
};
