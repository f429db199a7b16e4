<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<!-- To add a language, copy this file to NetworkPrinterConfig_xx.ts and list it in CMakeLists.txt; lupdate
     adds the page's other texts. PaneTitle is looked up by its id, a source text in the unnamed context. -->
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
