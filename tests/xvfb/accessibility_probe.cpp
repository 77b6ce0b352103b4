/*!	accessibility_probe APPLICATION: reads the desktop's accessibility tree as a screen reader does, and says what it hears. On
	standard output: "text: NAME" for each label that the application has, "ready", then "name: NAME" whenever one has got another
	name, and "KIND" for every other event of an object. Ends with its standard input. */

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <string>
#include <systemd/sd-bus.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

constexpr const char* kRegistry = "org.a11y.atspi.Registry";
constexpr const char* kAccessible = "org.a11y.atspi.Accessible";
constexpr const char* kEvents = "org.a11y.atspi.Event.Object";
constexpr uint32_t kLabelRole = 29; // ATSPI_ROLE_LABEL
constexpr int kMaxDepth = 12;

using Object = std::pair<std::string, std::string>; // the bus name of its program, its path

void
check(int status, const char* what)
{
	if (status >= 0)
		return;
	fprintf(stderr, "%s: %s\n", what, strerror(-status));
	exit(1);
}

//! The bus that programs and screen readers share, whose address the session's bus knows.
sd_bus*
accessibility_bus()
{
	sd_bus* session;
	check(sd_bus_open_user(&session), "no session's bus");
	sd_bus_message* reply;
	check(sd_bus_call_method(session, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress",
			  nullptr, &reply, ""),
		"no accessibility bus");
	const char* address;
	check(sd_bus_message_read(reply, "s", &address), "no address");
	sd_bus* bus;
	check(sd_bus_new(&bus), "no bus");
	check(sd_bus_set_address(bus, address), "bad address");
	check(sd_bus_set_bus_client(bus, 1), "no client");
	check(sd_bus_start(bus), "no connection");
	return bus;
}

std::string
name_of(sd_bus* bus, const Object& object)
{
	char* name = nullptr;
	if (sd_bus_get_property_string(
			bus, object.first.c_str(), object.second.c_str(), kAccessible, "Name", nullptr, &name)
		< 0)
		return {};
	std::string text(name);
	free(name);
	return text;
}

std::vector<Object>
children_of(sd_bus* bus, const Object& object)
{
	std::vector<Object> children;
	sd_bus_message* reply = nullptr;
	if (sd_bus_call_method(bus, object.first.c_str(), object.second.c_str(), kAccessible,
			"GetChildren", nullptr, &reply, "")
		< 0)
		return children;
	sd_bus_message_enter_container(reply, 'a', "(so)");
	const char* program;
	const char* path;
	while (sd_bus_message_read(reply, "(so)", &program, &path) > 0)
		children.emplace_back(program, path);
	sd_bus_message_unref(reply);
	return children;
}

bool
is_label(sd_bus* bus, const Object& object)
{
	sd_bus_message* reply = nullptr;
	uint32_t role = 0;
	if (sd_bus_call_method(bus, object.first.c_str(), object.second.c_str(), kAccessible, "GetRole",
			nullptr, &reply, "")
		>= 0)
		sd_bus_message_read(reply, "u", &role);
	sd_bus_message_unref(reply);
	return role == kLabelRole;
}

void
print_labels(sd_bus* bus, const Object& object, int depth)
{
	if (is_label(bus, object))
		printf("text: %s\n", name_of(bus, object).c_str());
	if (depth == kMaxDepth)
		return;
	for (const Object& child : children_of(bus, object))
		print_labels(bus, child, depth + 1);
}

int
event_heard(sd_bus_message* message, void*, sd_bus_error*)
{
	const char* detail = "";
	sd_bus_message_read(message, "s", &detail);
	if (strcmp(sd_bus_message_get_member(message), "PropertyChange") != 0
		|| strcmp(detail, "accessible-name") != 0) {
		printf("%s %s\n", sd_bus_message_get_member(message), detail);
		return 0;
	}
	const Object object(sd_bus_message_get_sender(message), sd_bus_message_get_path(message));
	printf("name: %s\n", name_of(sd_bus_message_get_bus(message), object).c_str());
	return 0;
}

} // namespace

int
main(int argc, char** argv)
{
	setvbuf(stdout, nullptr, _IOLBF, 0);
	if (argc != 2)
		return 2;
	sd_bus* bus = accessibility_bus();
	check(
		sd_bus_match_signal(bus, nullptr, nullptr, nullptr, kEvents, nullptr, event_heard, nullptr),
		"no signals");
	for (const char* event :
		{"object:property-change", "object:announcement", "object:text-changed",
			"object:text-caret-moved", "object:children-changed", "object:state-changed"})
		check(sd_bus_call_method(bus, kRegistry, "/org/a11y/atspi/registry", kRegistry,
				  "RegisterEvent", nullptr, nullptr, "s", event),
			"no events");
	const Object root(kRegistry, "/org/a11y/atspi/accessible/root");
	for (const Object& application : children_of(bus, root)) {
		if (name_of(bus, application) == argv[1])
			print_labels(bus, application, 0);
	}
	puts("ready");
	for (;;) {
		while (sd_bus_process(bus, nullptr) > 0) { }
		pollfd waits[] = {{STDIN_FILENO, POLLIN, 0}, {sd_bus_get_fd(bus), POLLIN, 0}};
		if (poll(waits, 2, -1) < 0 || waits[0].revents != 0)
			return 0;
	}
}
