<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1">
<context>
    <name>LanguageTest</name>
    <message>
        <source>in both</source>
        <translation>late</translation>
    </message>
    <message>
        <source>in late alone</source>
        <translation>late alone</translation>
    </message>
</context>
</TS>
