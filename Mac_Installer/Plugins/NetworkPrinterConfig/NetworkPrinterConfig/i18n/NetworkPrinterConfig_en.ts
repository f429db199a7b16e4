<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<!-- A language of its own is a file like this one, NetworkPrinterConfig_xx.ts, named in CMakeLists.txt; lupdate adds the
     page's other texts to it. PaneTitle is looked up by its id, which is a source text in the context without a name. -->
<TS version="2.1" language="en">
<context>
    <name></name>
    <message>
        <source>PaneTitle</source>
        <extracomment>The page's name in the installer's list of steps</extracomment>
        <translation>Printer Connection</translation>
    </message>
</context>
</TS>
