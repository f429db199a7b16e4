// SIGTERM, SIGINT and SIGHUP end the program as closing its window does.

#pragma once

/// Makes the signals quit the application's event loop; at once, or as soon as it runs. Called once, by main,
/// with an application object.
void quitOnTerminationSignals();
