#!/usr/bin/env bash
# test_PluginLoader.sh INSTALLER PLUGIN: the installer's messages and exit status for unusable plug-ins and wrong
# arguments. PLUGIN is support/TestPlugin.cpp.
source "$(dirname "$0")/support/expect.sh"
installer=$1
export QT_QPA_PLATFORM=offscreen
pages=$HOME/pages
mkdir "$pages" "$HOME/tmp"
export TMPDIR=$HOME/tmp

expect 0 'quazel-installer 1.' "$installer" -v
expect 2 'colour' "$installer" --colour
expect 2 'see --help' "$installer" now
expect 1 "$HOME/missing: is not a readable folder" "$installer" --plugins "$HOME/missing"
expect 1 "no usable plug-in in $pages" "$installer" --plugins "$pages"
"$installer" &
until grep -qs Initializing "$HOME/Documents/QzInstall.log"; do kill -0 $!; sleep 0.05; done
first=$!
# A second run opens a message instead.
"$installer" 2>"$HOME/second" &
running="quazel-installer (process $first on $HOSTNAME) is already running; close it first"
until grep -qsF "$running" "$HOME/second"; do kill -0 $!; sleep 0.05; done
kill $!
status=0
wait $! || status=$?
((status == 1))
kill $first
wait $first  # Its status is 0.
diff <(cd "$HOME" && find Documents tmp .config | sort) - <<<$'Documents\nDocuments/QzInstall.log\ntmp'

# Without "unix", XCB also tries localhost by TCP, and asks a name server for it where there is no /etc/hosts.
no_display='quazel-installer: no usable display: DISPLAY=unix:4096 WAYLAND_DISPLAY= QT_QPA_PLATFORM=; start '
expect 1 "${no_display}the program in a desktop session" env -u QT_QPA_PLATFORM -u WAYLAND_DISPLAY DISPLAY=unix:4096 \
    "$installer"
[[ $output != *$'\n'* ]]

expect_refused() {
    mv "$1" "$pages/page.so"
    expect 1 "$pages/page.so: $2" "$installer" --plugins "$pages"
}
echo 'no program' >"$HOME/text"
cp "$2" "$HOME/empty"
sed 's|InstallerPluginFactory/1.1|InstallerPluginFactory/2.0|' "$2" >"$HOME/newer"
mkfifo "$HOME/fifo"
expect_refused "$HOME/fifo" 'is not a regular file'
expect_refused "$HOME/text" 'is not a plug-in'
expect_refused "$HOME/newer" 'is made for "com.tovik.quazel.InstallerPluginFactory/2.0"'
[[ $output != *running* ]]
expect_refused "$HOME/empty" 'did not create a page'

HOME=$pages/page.so expect 1 "The folder $pages/page.so/Documents can't be written to" "$installer" --plugins "$pages"
