// Sends the messages of the program and its pages to syslog(3) and to standard error.

#pragma once

/// Forwards all Qt messages from now on, whatever thread they come from. Called once, by main.
void forwardMessagesToSystemLog();
