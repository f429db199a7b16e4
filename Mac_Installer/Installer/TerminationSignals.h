// SIGTERM, SIGINT and SIGHUP end the program like closing its window.

#pragma once

/// Makes the signals quit the application's event loop, or end it as soon as it starts. Called once, by main,
/// after the application object is created.
void quitOnTerminationSignals();
