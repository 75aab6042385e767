<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1">
<context>
    <name>LanguageTest</name>
    <message>
        <source>in both</source>
        <translation>early</translation>
    </message>
    <message>
        <source>in early alone</source>
        <translation>early alone</translation>
    </message>
</context>
</TS>
