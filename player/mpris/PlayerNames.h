#pragma once

#include "BusThread.h"

#include <functional>
#include <map>
#include <memory>
#include <string>

struct sd_bus_message;

/*!	The players on the bus by their names, without the prefix that all have, as they come and go.
	Thread: the bus thread only. */
class PlayerNames {
public:
	struct Owner {
		std::string name;   // unique
		uint32 process = 0; // 0: not known
	};

	//! `changed` is called whenever Owners() or AreKnown() is another.
	PlayerNames(BusThread& bus, std::function<void()> changed);

	//! The bus is connected.
	void Begin();
	//! Forgets all, and gives up what hangs on the connection.
	void End();

	const std::map<std::string, Owner>& Owners() const { return fOwners; }
	//! All that were there at the beginning are in it.
	bool AreKnown() const { return fKnown; }

private:
	struct Question {
		PlayerNames* names;
		std::string name;
		std::string owner; // once it is known: then its process is asked for
		BusSlot slot;
	};

	void ListReceived(sd_bus_message* message);
	void Ask(const std::string& name, const std::string& owner);
	void AnswerReceived(sd_bus_message* message, const Question& question);
	void OwnerChanged(sd_bus_message* message);
	void SetOwner(const std::string& name, const std::string& owner);
	void Changed();

	BusThread& fBus;
	const std::function<void()> fChanged;
	BusSlot fChangesSlot;
	BusSlot fListSlot;
	std::map<std::string, std::unique_ptr<Question>> fQuestions;
	std::map<std::string, Owner> fOwners;
	bool fListed = false;
	bool fKnown = false;
};
