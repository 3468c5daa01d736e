<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>CxExportToolButton</name>
    <message>
        <source>To File...</source>
        <translation>In Datei...</translation>
    </message>
    <message>
        <source>To Clipboard</source>
        <translation>In die Zwischenablage</translation>
    </message>
    <message>
        <source>Export Image</source>
        <translation>Bild exportieren</translation>
    </message>
    <message>
        <source>The image could not be saved as %1.
%2</source>
        <translation>Das Bild konnte nicht als %1 gespeichert werden.
%2</translation>
    </message>
</context>
<context>
    <name>host::CameraListModel</name>
    <message>
        <source>Available</source>
        <translation>Verfügbar</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Geöffnet</translation>
    </message>
    <message>
        <source>Acquiring</source>
        <translation>Aufnahme</translation>
    </message>
    <message>
        <source>Measured</source>
        <translation>Messung</translation>
    </message>
    <message>
        <source>plugged in, not open</source>
        <translation>angeschlossen, nicht geöffnet</translation>
    </message>
    <message>
        <source>open</source>
        <translation>geöffnet</translation>
    </message>
    <message>
        <source>open and acquiring</source>
        <translation>geöffnet, Aufnahme läuft</translation>
    </message>
    <message>
        <source>measured by a plug-in, which drives it until the measurement ends</source>
        <translation>wird von einem Plug-in gemessen und bis zum Ende der Messung von ihm gesteuert</translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <comment>serial number (user id)</comment>
        <translation>%1 (%2)</translation>
    </message>
    <message>
        <source>%1 %2</source>
        <comment>model, serial number</comment>
        <translation>%1 %2</translation>
    </message>
    <message>
        <source>%1
%2</source>
        <comment>model, serial number</comment>
        <translation>%1
%2</translation>
    </message>
    <message>
        <source>Model: %1
Serial number: %2
User id: %3
State: %4</source>
        <translation>Modell: %1
Seriennummer: %2
Benutzerkennung: %3
Zustand: %4</translation>
    </message>
    <message>
        <source>State</source>
        <translation>Zustand</translation>
    </message>
    <message>
        <source>Camera</source>
        <translation>Kamera</translation>
    </message>
</context>
<context>
    <name>host::CameraPanel</name>
    <message>
        <source>&amp;Open</source>
        <translation>Ö&amp;ffnen</translation>
    </message>
    <message>
        <source>Open the selected camera</source>
        <translation>Ausgewählte Kamera öffnen</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Schließen</translation>
    </message>
    <message>
        <source>Close the selected camera</source>
        <translation>Ausgewählte Kamera schließen</translation>
    </message>
    <message>
        <source>&amp;Start</source>
        <translation>S&amp;tarten</translation>
    </message>
    <message>
        <source>Start the acquisition of the selected camera and show its pictures</source>
        <translation>Aufnahme der ausgewählten Kamera starten und ihre Bilder anzeigen</translation>
    </message>
    <message>
        <source>S&amp;top</source>
        <translation>Sto&amp;ppen</translation>
    </message>
    <message>
        <source>Stop the acquisition of the selected camera</source>
        <translation>Aufnahme der ausgewählten Kamera stoppen</translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <comment>what a button does, its shortcut</comment>
        <translation>%1 (%2)</translation>
    </message>
    <message>
        <source>Camera %1 cannot be opened.</source>
        <translation>Die Kamera %1 lässt sich nicht öffnen.</translation>
    </message>
    <message>
        <source>Camera %1 does not start.</source>
        <translation>Die Kamera %1 startet nicht.</translation>
    </message>
    <message>
        <source>Camera %1 reported an error while it stopped.</source>
        <translation>Die Kamera %1 hat beim Stoppen einen Fehler gemeldet.</translation>
    </message>
    <message>
        <source>Camera %1 %2 was lost.</source>
        <translation>Die Verbindung zur Kamera %1 %2 ist abgebrochen.</translation>
    </message>
</context>
<context>
    <name>host::LibraryFile</name>
    <message>
        <source>not a file</source>
        <translation>keine Datei</translation>
    </message>
    <message>
        <source>not a shared library</source>
        <translation>keine dynamische Bibliothek</translation>
    </message>
    <message>
        <source>the file is damaged: a part of it is missing</source>
        <translation>die Datei ist beschädigt: ein Teil fehlt</translation>
    </message>
    <message>
        <source>built for another processor</source>
        <translation>für einen anderen Prozessor gebaut</translation>
    </message>
</context>
<context>
    <name>host::LiveView</name>
    <message>
        <source>No open camera is selected.</source>
        <translation>Keine geöffnete Kamera ausgewählt.</translation>
    </message>
    <message>
        <source>A plug-in measures with this camera.
Its picture returns when the measurement ends.</source>
        <translation>Ein Plug-in misst mit dieser Kamera.
Ihr Bild erscheint wieder, wenn die Messung endet.</translation>
    </message>
    <message>
        <source>The camera does not acquire.
Start the acquisition to see its picture.</source>
        <translation>Die Kamera nimmt nicht auf.
Starten Sie die Aufnahme, um ihr Bild zu sehen.</translation>
    </message>
    <message>
        <source>Waiting for the first picture…</source>
        <translation>Warten auf das erste Bild…</translation>
    </message>
    <message>
        <source>%1 × %2 pixels, %3 frames/s</source>
        <translation>%1 × %2 Pixel, %3 Frames/s</translation>
    </message>
    <message numerus="yes">
        <source>, %n damaged</source>
        <comment>frames</comment>
        <translation>
            <numerusform>, %n fehlerhaft</numerusform>
            <numerusform>, %n fehlerhaft</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>host::LogLine</name>
    <message>
        <source>Debug</source>
        <translation>Debug</translation>
    </message>
    <message>
        <source>Info</source>
        <translation>Info</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>Warnung</translation>
    </message>
    <message>
        <source>Critical</source>
        <translation>Kritisch</translation>
    </message>
    <message>
        <source>Fatal</source>
        <translation>Fatal</translation>
    </message>
</context>
<context>
    <name>host::LogStore</name>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>Level</source>
        <translation>Stufe</translation>
    </message>
    <message>
        <source>Thread</source>
        <translation>Thread</translation>
    </message>
    <message>
        <source>Category</source>
        <translation>Kategorie</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>Meldung</translation>
    </message>
</context>
<context>
    <name>host::LogWindow</name>
    <message>
        <source>&amp;Follow</source>
        <translation>&amp;Mitlaufen</translation>
    </message>
    <message>
        <source>Log</source>
        <translation>Protokoll</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Kopieren</translation>
    </message>
    <message>
        <source>Copy the selected lines, or all shown lines if none is selected</source>
        <translation>Ausgewählte Zeilen kopieren, oder alle angezeigten, wenn keine ausgewählt ist</translation>
    </message>
    <message>
        <source>C&amp;lear</source>
        <translation>&amp;Leeren</translation>
    </message>
    <message>
        <source>Remove all lines</source>
        <translation>Alle Zeilen entfernen</translation>
    </message>
    <message>
        <source>All</source>
        <translation>Alle</translation>
    </message>
    <message>
        <source>Information and worse</source>
        <translation>Ab Information</translation>
    </message>
    <message>
        <source>Warnings and worse</source>
        <translation>Ab Warnung</translation>
    </message>
    <message>
        <source>Critical and worse</source>
        <translation>Ab Kritisch</translation>
    </message>
    <message>
        <source>Show only lines with this text</source>
        <translation>Nur Zeilen mit diesem Text anzeigen</translation>
    </message>
    <message>
        <source>Keep the newest line in view</source>
        <translation>Die neueste Zeile im Blick behalten</translation>
    </message>
    <message>
        <source>Lines: %1, shown: %2</source>
        <translation>Zeilen: %1, angezeigt: %2</translation>
    </message>
    <message>
        <source>(too many to keep; oldest dropped: %1)</source>
        <translation>(zu viele; älteste verworfen: %1)</translation>
    </message>
</context>
<context>
    <name>host::MainWindow</name>
    <message>
        <source>Velmora</source>
        <translation>Velmora</translation>
    </message>
    <message>
        <source>Cameras</source>
        <translation>Kameras</translation>
    </message>
    <message>
        <source>Parameters</source>
        <translation>Parameter</translation>
    </message>
    <message>
        <source>Log</source>
        <translation>Protokoll</translation>
    </message>
    <message>
        <source>Ready</source>
        <translation>Bereit</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Cameras</source>
        <translation>&amp;Kameras</translation>
    </message>
    <message>
        <source>Open &amp;All</source>
        <translation>&amp;Alle öffnen</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>&amp;Go To</source>
        <translation>&amp;Gehe zu</translation>
    </message>
    <message>
        <source>&amp;Panels</source>
        <translation>&amp;Bereiche</translation>
    </message>
    <message>
        <source>&amp;Reset Layout</source>
        <translation>&amp;Anordnung zurücksetzen</translation>
    </message>
    <message>
        <source>&amp;Full Screen</source>
        <translation>&amp;Vollbild</translation>
    </message>
    <message>
        <source>&amp;Interface Level</source>
        <translation>Bedien&amp;stufe</translation>
    </message>
    <message>
        <source>&amp;Basic</source>
        <translation>&amp;Basis</translation>
    </message>
    <message>
        <source>&amp;Advanced</source>
        <translation>&amp;Erweitert</translation>
    </message>
    <message>
        <source>&amp;Expert</source>
        <translation>E&amp;xperte</translation>
    </message>
    <message>
        <source>&amp;Theme</source>
        <translation>&amp;Farbschema</translation>
    </message>
    <message>
        <source>As the &amp;System</source>
        <translation>Wie das &amp;System</translation>
    </message>
    <message>
        <source>&amp;Light</source>
        <translation>&amp;Hell</translation>
    </message>
    <message>
        <source>&amp;Dark</source>
        <translation>&amp;Dunkel</translation>
    </message>
    <message>
        <source>&amp;Tools</source>
        <translation>E&amp;xtras</translation>
    </message>
    <message>
        <source>&amp;Plug-ins...</source>
        <translation>&amp;Plug-ins...</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>&amp;Keyboard Shortcuts</source>
        <translation>&amp;Tastenkürzel</translation>
    </message>
    <message>
        <source>About &amp;Qt</source>
        <translation>Über &amp;Qt</translation>
    </message>
    <message>
        <source>&amp;About Velmora</source>
        <translation>Über &amp;Velmora</translation>
    </message>
    <message>
        <source>About Velmora</source>
        <translation>Über Velmora</translation>
    </message>
    <message>
        <source>&lt;b&gt;Velmora %1&lt;/b&gt;&lt;p&gt;Shows cameras and runs plug-ins that use them.&lt;/p&gt;&lt;p&gt;Licence: GPL-3.0-or-later&lt;/p&gt;</source>
        <translation>&lt;b&gt;Velmora %1&lt;/b&gt;&lt;p&gt;Zeigt Kameras an und führt Plug-ins aus, die mit ihnen arbeiten.&lt;/p&gt;&lt;p&gt;Lizenz: GPL-3.0-or-later&lt;/p&gt;</translation>
    </message>
</context>
<context>
    <name>host::ParameterModel</name>
    <message>
        <source>unreadable</source>
        <translation>nicht lesbar</translation>
    </message>
    <message>
        <source>%1
Read only</source>
        <translation>%1
Nur lesbar</translation>
    </message>
    <message>
        <source>%1
%2 to %3 %4</source>
        <comment>name, smallest and largest value, unit</comment>
        <translation>%1
%2 bis %3 %4</translation>
    </message>
    <message>
        <source>Parameter</source>
        <translation>Parameter</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Wert</translation>
    </message>
    <message>
        <source>Unit</source>
        <translation>Einheit</translation>
    </message>
    <message>
        <source>The camera refused %1 = %2.</source>
        <translation>Die Kamera hat %1 = %2 abgelehnt.</translation>
    </message>
    <message>
        <source>Stop the acquisition first.</source>
        <translation>Stoppen Sie zuerst die Aufnahme.</translation>
    </message>
</context>
<context>
    <name>host::ParameterPanel</name>
    <message>
        <source>Read again</source>
        <translation>Neu lesen</translation>
    </message>
    <message>
        <source>Read all values from the camera again</source>
        <translation>Alle Werte neu aus der Kamera lesen</translation>
    </message>
    <message>
        <source>No open camera is selected.</source>
        <translation>Keine geöffnete Kamera ausgewählt.</translation>
    </message>
    <message>
        <source>A plug-in measures with this camera: nothing can be changed now.</source>
        <translation>Ein Plug-in misst mit dieser Kamera: zurzeit lässt sich nichts ändern.</translation>
    </message>
</context>
<context>
    <name>host::PictureFormat</name>
    <message>
        <source>The camera sends incomplete pictures: %1 bytes for %2 × %3 pixels.</source>
        <translation>Die Kamera sendet unvollständige Bilder: %1 Bytes für %2 × %3 Pixel.</translation>
    </message>
    <message>
        <source>Pictures in image format %1 cannot be shown.</source>
        <translation>Bilder im Bildformat %1 können nicht angezeigt werden.</translation>
    </message>
    <message>
        <source>Pictures of %1 × %2 pixels in %3 bytes cannot be shown.</source>
        <translation>Bilder mit %1 × %2 Pixeln in %3 Bytes können nicht angezeigt werden.</translation>
    </message>
    <message>
        <source>The camera sends frames without a picture.</source>
        <translation>Die Kamera sendet Frames ohne Bild.</translation>
    </message>
    <message>
        <source>Pictures of %1 × %2 pixels are too large to be shown.</source>
        <translation>Bilder mit %1 × %2 Pixeln sind zu groß für die Anzeige.</translation>
    </message>
</context>
<context>
    <name>host::PictureGrabber</name>
    <message>
        <source>No frame can be captured from the camera. Trying again.</source>
        <translation>Von der Kamera lässt sich kein Frame abholen. Neuer Versuch läuft.</translation>
    </message>
</context>
<context>
    <name>host::PluginCatalog</name>
    <message>
        <source>an exception without a text</source>
        <translation>eine Ausnahme ohne Text</translation>
    </message>
    <message>
        <source>an exception of unknown type</source>
        <translation>eine Ausnahme unbekannten Typs</translation>
    </message>
    <message>
        <source>not a Qt plug-in</source>
        <translation>kein Qt-Plug-in</translation>
    </message>
    <message>
        <source>a plug-in of another program (%1)</source>
        <translation>ein Plug-in eines anderen Programms (%1)</translation>
    </message>
    <message>
        <source>switched off by the user</source>
        <translation>vom Benutzer abgeschaltet</translation>
    </message>
    <message>
        <source>its root object threw: %1</source>
        <translation>sein Wurzelobjekt hat eine Ausnahme ausgelöst: %1</translation>
    </message>
    <message>
        <source>it has no CxPlugin interface</source>
        <translation>es hat keine CxPlugin-Schnittstelle</translation>
    </message>
    <message>
        <source>init() threw: %1</source>
        <translation>init() hat eine Ausnahme ausgelöst: %1</translation>
    </message>
    <message>
        <source>init() returned false</source>
        <translation>init() hat false zurückgegeben</translation>
    </message>
    <message>
        <source>foreign</source>
        <translation>fremd</translation>
    </message>
    <message>
        <source>invalid</source>
        <translation>ungültig</translation>
    </message>
    <message>
        <source>disabled</source>
        <translation>abgeschaltet</translation>
    </message>
    <message>
        <source>load failed</source>
        <translation>Laden fehlgeschlagen</translation>
    </message>
    <message>
        <source>init failed</source>
        <translation>Start fehlgeschlagen</translation>
    </message>
    <message>
        <source>loaded</source>
        <translation>geladen</translation>
    </message>
</context>
<context>
    <name>host::PluginManagerDialog</name>
    <message>
        <source>Description:</source>
        <translation>Beschreibung:</translation>
    </message>
    <message>
        <source>Author:</source>
        <translation>Autor:</translation>
    </message>
    <message>
        <source>Web site:</source>
        <translation>Webseite:</translation>
    </message>
    <message>
        <source>Reason:</source>
        <translation>Grund:</translation>
    </message>
    <message>
        <source>File:</source>
        <translation>Datei:</translation>
    </message>
    <message>
        <source>Plug-ins</source>
        <translation>Plug-ins</translation>
    </message>
    <message>
        <source>Plug-in</source>
        <translation>Plug-in</translation>
    </message>
    <message>
        <source>State</source>
        <translation>Zustand</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>Version</translation>
    </message>
    <message>
        <source>Reason</source>
        <translation>Grund</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>No plug-in was found.</source>
        <translation>Es wurde kein Plug-in gefunden.</translation>
    </message>
    <message>
        <source>A plug-in without its mark is not loaded at the next start.</source>
        <translation>Ein Plug-in ohne Häkchen wird beim nächsten Start nicht geladen.</translation>
    </message>
</context>
<context>
    <name>host::ShortcutsDialog</name>
    <message>
        <source>Keyboard Shortcuts</source>
        <translation>Tastenkürzel</translation>
    </message>
    <message>
        <source>Keys</source>
        <translation>Tasten</translation>
    </message>
    <message>
        <source>Action</source>
        <translation>Aktion</translation>
    </message>
</context>
<context>
    <name>host::ViewerSettings</name>
    <message>
        <source>it is not a regular file</source>
        <translation>sie ist keine gewöhnliche Datei</translation>
    </message>
    <message>
        <source>it is too large</source>
        <translation>sie ist zu groß</translation>
    </message>
    <message>
        <source>The settings file %1 cannot be read: %2. Settings of this run are not kept.</source>
        <translation>Die Einstellungsdatei %1 ist nicht lesbar: %2. Einstellungen dieser Sitzung gehen verloren.</translation>
    </message>
    <message>
        <source>The settings file %1 cannot be written. Changed settings are not kept.</source>
        <translation>Die Einstellungsdatei %1 ist nicht beschreibbar. Geänderte Einstellungen gehen verloren.</translation>
    </message>
    <message>
        <source>The settings file %1 is damaged and could not be copied to %2. It is left as it is; settings of this run are not kept.</source>
        <translation>Die Einstellungsdatei %1 ist beschädigt und konnte nicht nach %2 kopiert werden. Sie bleibt, wie sie ist; Einstellungen dieser Sitzung gehen verloren.</translation>
    </message>
    <message>
        <source>The settings file %1 is damaged. It was copied to %2; what could not be read starts anew.</source>
        <translation>Die Einstellungsdatei %1 ist beschädigt. Sie wurde nach %2 kopiert; was nicht lesbar war, beginnt neu.</translation>
    </message>
    <message>
        <source>The settings could not be written to %1.</source>
        <translation>Die Einstellungen konnten nicht nach %1 geschrieben werden.</translation>
    </message>
</context>
</TS>
