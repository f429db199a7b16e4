<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en">
<context>
    <name></name>
    <message id="PaneTitle">
        <source></source>
        <extracomment>The page's name in the installer's list of steps</extracomment>
        <translation>Printer Connection</translation>
    </message>
</context>
</TS>
