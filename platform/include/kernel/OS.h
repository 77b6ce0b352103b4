#pragma once

#include <SupportDefs.h>

/*!	The kernel kit. All of it may be called from any thread. Times are µs; points in time are
	system_time()'s. */

#define B_OS_NAME_LENGTH 32
#define B_INFINITE_TIMEOUT (9223372036854775807LL)

typedef int32 port_id;
typedef int32 sem_id;
typedef int32 team_id;
typedef int32 thread_id;

//! Flags of the ..._etc() calls.
enum {
	B_CAN_INTERRUPT = 0x01,     // taken, without effect: nothing here ends by a signal
	B_DO_NOT_RESCHEDULE = 0x02, // only a hint
	B_RELATIVE_TIMEOUT = 0x08,  // `timeout` counts from now
	B_TIMEOUT = B_RELATIVE_TIMEOUT,
	B_ABSOLUTE_TIMEOUT
	= 0x10 // `timeout` is a point in time; without either flag it is not looked at
};

// Semaphores

/*!	A semaphore with `count` free places, of which acquiring takes and releasing gives back. Ids are
	not given out again for a long time. B_BAD_VALUE for a negative count, B_NO_MORE_SEMS. `name`
	may be NULL. */
sem_id create_sem(int32 count, const char* name);
//! Wakes who waits with B_BAD_SEM_ID.
status_t delete_sem(sem_id id);
//! Waits for a place. B_OK or B_BAD_SEM_ID.
status_t acquire_sem(sem_id id);
/*!	Waits for `count` places (at least 1, else B_BAD_VALUE), first come, first served.
	B_TIMED_OUT when the time is over; B_WOULD_BLOCK when a relative timeout is 0 or less. */
status_t acquire_sem_etc(sem_id id, int32 count, uint32 flags, bigtime_t timeout);
status_t release_sem(sem_id id);
status_t release_sem_etc(sem_id id, int32 count, uint32 flags);
//! Free places; negative: how many more are waited for.
status_t get_sem_count(sem_id id, int32* count);

// Threads

enum {
	B_IDLE_PRIORITY = 0,
	B_LOWEST_ACTIVE_PRIORITY = 1,
	B_LOW_PRIORITY = 5,
	B_NORMAL_PRIORITY = 10,
	B_DISPLAY_PRIORITY = 15,
	B_URGENT_DISPLAY_PRIORITY = 20,
	B_REAL_TIME_DISPLAY_PRIORITY = 100,
	B_URGENT_PRIORITY = 110,
	B_REAL_TIME_PRIORITY = 120
};

typedef enum { B_THREAD_RUNNING = 1, B_THREAD_SUSPENDED = 5 } thread_state;

typedef struct {
	thread_id thread;
	team_id team;
	char name[B_OS_NAME_LENGTH];
	thread_state state; // suspended: not yet started
	int32 priority;
} thread_info;

typedef status_t (*thread_func)(void* data);
typedef thread_func thread_entry;

/*!	A new thread that runs `func(data)` once it is resumed. Its name is cut at B_OS_NAME_LENGTH - 1
	bytes. B_BAD_VALUE without a function. */
thread_id spawn_thread(thread_func func, const char* name, int32 priority, void* data);
//! Starts a spawned thread. B_BAD_THREAD_STATE when it runs already, B_BAD_THREAD_ID,
//! B_NO_MORE_THREADS.
status_t resume_thread(thread_id thread);
/*!	Waits until `thread` has ended and all its thread-local objects are gone; one not yet started is
	started. `returnValue` (may be NULL): what its function answered. Of threads that nobody waits
	for the results of the last 256 are kept, each for one wait; later, and for unknown ids,
	B_BAD_THREAD_ID. B_NOT_ALLOWED for the caller itself. */
status_t wait_for_thread(thread_id thread, status_t* returnValue);
/*!	The running or suspended thread of this process with that name, B_NAME_NOT_FOUND without one; of
	several the oldest. NULL: the caller, which gets an id by this if it was not made by
	spawn_thread(). */
thread_id find_thread(const char* name);
status_t rename_thread(thread_id thread, const char* newName);
//! Answers the old priority. Priorities are kept and reported (clipped to 1..120), but leave the
//! scheduling alone.
status_t set_thread_priority(thread_id thread, int32 newPriority);
status_t get_thread_info(thread_id thread, thread_info* info);

// Teams

#define B_CURRENT_TEAM 0

typedef struct {
	team_id team;  // the process id
	char args[64]; // the beginning of the command line
} team_info;

/*!	The user's processes one after the other: this one, and all that have a port. `cookie` is 0 at
	first. B_BAD_VALUE after the last. */
status_t get_next_team_info(int32* cookie, team_info* info);

// Ports

typedef struct {
	port_id port;
	team_id team; // the owner
	char name[B_OS_NAME_LENGTH];
	int32 capacity;
	int32 queue_count; // messages that wait; 0 for another process's port
	int32 total_count; // messages that were read so far; 0 for another process's port
} port_info;

/*!	A queue of `capacity` (1 to 4096, else B_BAD_VALUE) messages, owned by this process. The user's
	other processes find it by its name (cut at B_OS_NAME_LENGTH - 1 bytes, not necessarily unique)
	and write to it: they have a few more places of their own. Only the owner reads, closes and
	deletes it (B_NOT_ALLOWED for others). Ids are this process's own: another one finds the same
	port under another id. */
port_id create_port(int32 capacity, const char* name);
//! A port of this process or of another one of the same user, B_NAME_NOT_FOUND without one.
port_id find_port(const char* name);
//! Waits while the queue is full. B_BAD_PORT_ID: closed, deleted, or its owner has died.
//! B_BAD_VALUE: too long, or no buffer.
status_t write_port(port_id port, int32 code, const void* buffer, size_t size);
status_t write_port_etc(
	port_id port, int32 code, const void* buffer, size_t size, uint32 flags, bigtime_t timeout);
//! Waits for a message and answers the bytes copied; what does not fit into `size` bytes is lost.
ssize_t read_port(port_id port, int32* code, void* buffer, size_t size);
ssize_t read_port_etc(
	port_id port, int32* code, void* buffer, size_t size, uint32 flags, bigtime_t timeout);
//! Waits for a message and answers its size.
ssize_t port_buffer_size(port_id port);
ssize_t port_buffer_size_etc(port_id port, uint32 flags, bigtime_t timeout);
//! Messages that wait now.
ssize_t port_count(port_id port);
//! No more writing; what is there can still be read.
status_t close_port(port_id port);
//! Wakes who waits with B_BAD_PORT_ID.
status_t delete_port(port_id port);
status_t get_port_info(port_id port, port_info* info);
//! The ports of a team one after the other. `cookie` is 0 at first. B_BAD_VALUE after the last.
status_t get_next_port_info(team_id team, int32* cookie, port_info* info);

// Time

//! µs of the monotonic clock.
bigtime_t system_time();
//! Waits that long. B_INTERRUPTED when a signal came.
status_t snooze(bigtime_t microseconds);
#define B_SYSTEM_TIMEBASE 0
//! B_BAD_VALUE for another time base.
status_t snooze_until(bigtime_t time, int timeBase);
//! Seconds since 1970.
uint32 real_time_clock();
//! µs since 1970.
bigtime_t real_time_clock_usecs();

//! Writes the message to standard error and stops the process where a debugger sees it.
[[noreturn]] void debugger(const char* message);
