// Where the messages of the program and its pages go: to syslog(3), for the administrator, and to standard
// error.

#pragma once

/// Forwards all Qt messages from now on. Called once, by main. Messages may come from any thread.
void forwardMessagesToSystemLog();
