// Ends the program on SIGTERM, SIGINT and SIGHUP in the same way as closing its window.

#pragma once

/// From now on, the signals end the application's event loop; one that arrives earlier ends it when it
/// starts. Those that are ignored, as under nohup, stay ignored. Called once, by main, after the application
/// object is created.
void quitOnTerminationSignals();

/// The signal that ended the event loop, or 0.
[[nodiscard]] int terminationSignal();
