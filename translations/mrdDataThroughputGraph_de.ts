<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>CxCameraLineData</name>
    <message>
        <source>Exporting %1 data</source>
        <translation>Daten von %1 werden exportiert</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Data throughput monitor</source>
        <translation>Datendurchsatz-Monitor</translation>
    </message>
</context>
<context>
    <name>CxDataGraphForm</name>
    <message>
        <source>Data Throughput Graph</source>
        <translation>Datendurchsatz-Diagramm</translation>
    </message>
    <message>
        <source>Setup...</source>
        <translation>Einrichten...</translation>
    </message>
    <message>
        <source>Start All</source>
        <translation>Alle starten</translation>
    </message>
    <message>
        <source>Reset Zoom</source>
        <translation>Zoom zurücksetzen</translation>
    </message>
    <message>
        <source>Reset Pan</source>
        <translation>Position zurücksetzen</translation>
    </message>
    <message>
        <source>Live Graph</source>
        <translation>Live-Diagramm</translation>
    </message>
    <message>
        <source>Refresh</source>
        <translation>Aktualisieren</translation>
    </message>
    <message>
        <source>Export Graph</source>
        <translation>Diagramm exportieren</translation>
    </message>
    <message>
        <source>Enable or disable plot:</source>
        <translation>Kurven ein- oder ausblenden:</translation>
    </message>
    <message>
        <source>Data Format</source>
        <translation>Datenformat</translation>
    </message>
    <message>
        <source>Output data format.</source>
        <translation>Ausgabeformat der Daten.</translation>
    </message>
    <message>
        <source>Testing</source>
        <translation>Misst</translation>
    </message>
    <message>
        <source>Stopped</source>
        <translation>Gestoppt</translation>
    </message>
    <message>
        <source>Acq</source>
        <translation>Aufnahme</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>Starten</translation>
    </message>
    <message>
        <source>Camera %1 does not support data throughput analysis in Velmora. See Error log for details.</source>
        <translation>Die Kamera %1 unterstützt keine Datendurchsatz-Analyse in Velmora. Einzelheiten stehen im Fehlerprotokoll.</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stoppen</translation>
    </message>
    <message>
        <source>Stop All</source>
        <translation>Alle stoppen</translation>
    </message>
    <message>
        <source>Camera %1 does not support 
 data throughput analysis in Velmora.</source>
        <translation>Die Kamera %1 unterstützt keine 
 Datendurchsatz-Analyse in Velmora.</translation>
    </message>
    <message>
        <source>Avg. rate [MB/s]</source>
        <translation>Mittl. Rate [MB/s]</translation>
    </message>
    <message>
        <source>Buffer filled [%]</source>
        <translation>Pufferfüllstand [%]</translation>
    </message>
    <message>
        <source>Counter value</source>
        <translation>Zählerstand</translation>
    </message>
    <message>
        <source>FPS</source>
        <translation>Frames/s</translation>
    </message>
    <message>
        <source>Min throughput</source>
        <translation>Min. Durchsatz</translation>
    </message>
    <message>
        <source>Minimum data rate in whole data set</source>
        <translation>Kleinste Datenrate im gesamten Datensatz</translation>
    </message>
    <message>
        <source>Max buffer level</source>
        <translation>Max. Füllstand</translation>
    </message>
    <message>
        <source>Internal camera buffer fill percentage</source>
        <translation>Füllstand des kamerainternen Puffers in Prozent</translation>
    </message>
    <message>
        <source>Frames per second</source>
        <translation>Frames pro Sekunde</translation>
    </message>
    <message>
        <source>Transferred</source>
        <translation>Übertragen</translation>
    </message>
    <message>
        <source>Number of transferred frames</source>
        <translation>Anzahl der übertragenen Frames</translation>
    </message>
    <message>
        <source>Transport skip</source>
        <translation>Transportverluste</translation>
    </message>
    <message>
        <source>Number of skipped frames on transport layer</source>
        <translation>Anzahl der in der Transportschicht übersprungenen Frames</translation>
    </message>
    <message>
        <source>API skip</source>
        <translation>API-Verluste</translation>
    </message>
    <message>
        <source>Number of skipped frames on API layer</source>
        <translation>Anzahl der in der API-Schicht übersprungenen Frames</translation>
    </message>
    <message>
        <source>Missed trg. overlap</source>
        <translation>Verp. Trg. Überlappung</translation>
    </message>
    <message>
        <source>Number of missed triggers due to overlap</source>
        <translation>Anzahl der wegen Überlappung verpassten Trigger</translation>
    </message>
    <message>
        <source>Missed trg overflow</source>
        <translation>Verp. Trg. Überlauf</translation>
    </message>
    <message>
        <source>Number of missed triggers due to frame buffer full</source>
        <translation>Anzahl der wegen vollen Framepuffers verpassten Trigger</translation>
    </message>
    <message>
        <source>Buffer overflow</source>
        <translation>Pufferüberlauf</translation>
    </message>
    <message>
        <source>Frame buffer full counter</source>
        <translation>Zähler: Framepuffer voll</translation>
    </message>
    <message>
        <source>Export Data...</source>
        <translation>Daten exportieren...</translation>
    </message>
    <message>
        <source>Camera</source>
        <translation>Kamera</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>Data gap measurement status</source>
        <translation>Status der Datenlücken-Messung</translation>
    </message>
    <message>
        <source>Measure</source>
        <translation>Messung</translation>
    </message>
    <message>
        <source>Start/Stop Measurement</source>
        <translation>Messung starten/stoppen</translation>
    </message>
    <message>
        <source>Export data</source>
        <translation>Datenexport</translation>
    </message>
    <message>
        <source>Export data to .csv report</source>
        <translation>Daten als CSV-Bericht exportieren</translation>
    </message>
    <message>
        <source>Graph</source>
        <translation>Diagramm</translation>
    </message>
    <message>
        <source>Enable/Disable plotting of measured data</source>
        <translation>Messdaten im Diagramm ein-/ausblenden</translation>
    </message>
    <message>
        <source>Avg throughput</source>
        <translation>Mittl. Durchsatz</translation>
    </message>
    <message>
        <source>Average data rate</source>
        <translation>Mittlere Datenrate</translation>
    </message>
    <message>
        <source>Buffer overflow count</source>
        <translation>Anzahl Pufferüberläufe</translation>
    </message>
    <message>
        <source>Number of times internal camera buffer was totally filled</source>
        <translation>So oft war der kamerainterne Puffer vollständig gefüllt</translation>
    </message>
    <message>
        <source>Required throughput</source>
        <translation>Erforderlicher Durchsatz</translation>
    </message>
    <message>
        <source>Expected sensor speed for evaluation</source>
        <translation>Für die Auswertung erwartete Sensordatenrate</translation>
    </message>
    <message>
        <source>Camera buffer size</source>
        <translation>Kamerapuffergröße</translation>
    </message>
    <message>
        <source>Size of internal camera buffer in bytes</source>
        <translation>Größe des kamerainternen Puffers in Bytes</translation>
    </message>
    <message>
        <source>Y Axis scaling</source>
        <translation>Skalierung der Y-Achse</translation>
    </message>
    <message>
        <source>Enable/Disable Y axis automatic scaling or set manual axis range</source>
        <translation>Automatische Skalierung der Y-Achse ein-/ausschalten oder Achsenbereich vorgeben</translation>
    </message>
    <message>
        <source>MB/s</source>
        <translation>MB/s</translation>
    </message>
    <message>
        <source>Average
throughput</source>
        <translation>Mittlerer
Durchsatz</translation>
    </message>
    <message>
        <source>Minimum
throughput</source>
        <translation>Minimaler
Durchsatz</translation>
    </message>
    <message>
        <source>Buffer overflow
count</source>
        <translation>Anzahl
Pufferüberläufe</translation>
    </message>
    <message>
        <source>Required
throughput</source>
        <translation>Erforderlicher
Durchsatz</translation>
    </message>
    <message>
        <source>Camera buffer
size</source>
        <translation>Größe des
Kamerapuffers</translation>
    </message>
    <message>
        <source>kB</source>
        <translation>kB</translation>
    </message>
    <message>
        <source>Export Measured Data</source>
        <translation>Messdaten exportieren</translation>
    </message>
    <message>
        <source>No measured data to export.</source>
        <translation>Keine Messdaten zum Exportieren vorhanden.</translation>
    </message>
    <message>
        <source>Select Output File for Measured Data</source>
        <translation>Ausgabedatei für Messdaten wählen</translation>
    </message>
    <message>
        <source>CSV files (*.csv)</source>
        <translation>CSV-Dateien (*.csv)</translation>
    </message>
    <message>
        <source>Stopping measurement</source>
        <translation>Messung wird gestoppt</translation>
    </message>
    <message>
        <source>Stopping camera %1...</source>
        <translation>Kamera %1 wird gestoppt...</translation>
    </message>
    <message>
        <source>Starting measurement</source>
        <translation>Messung wird gestartet</translation>
    </message>
    <message>
        <source>Starting camera %1...</source>
        <translation>Kamera %1 wird gestartet...</translation>
    </message>
    <message>
        <source>Failed to start measurement</source>
        <translation>Messung konnte nicht gestartet werden</translation>
    </message>
</context>
<context>
    <name>CxDataGraphSetupDlg</name>
    <message>
        <source>Data Throughput Test Setup</source>
        <translation>Datendurchsatz-Test einrichten</translation>
    </message>
    <message>
        <source>Measurement</source>
        <translation>Messung</translation>
    </message>
    <message>
        <source>Sample period:</source>
        <translation>Abtastperiode:</translation>
    </message>
    <message>
        <source>Mode:</source>
        <translation>Modus:</translation>
    </message>
    <message>
        <source>Bytes</source>
        <translation>Bytes</translation>
    </message>
    <message>
        <source>Capacity:</source>
        <translation>Kapazität:</translation>
    </message>
    <message>
        <source>million samples per camera</source>
        <translation>Millionen Abtastwerte pro Kamera</translation>
    </message>
    <message>
        <source>Data Throughput measurement</source>
        <translation>Datendurchsatz-Messung</translation>
    </message>
    <message>
        <source>Standard Sensor Acquisition</source>
        <translation>Normale Sensoraufnahme</translation>
    </message>
    <message>
        <source>Display</source>
        <translation>Anzeige</translation>
    </message>
    <message>
        <source>Refresh period:</source>
        <translation>Aktualisierung alle:</translation>
    </message>
    <message>
        <source>seconds</source>
        <translation>Sekunden</translation>
    </message>
    <message>
        <source>Frame timestamps used in graph:</source>
        <translation>Frame-Zeitstempel im Diagramm:</translation>
    </message>
    <message>
        <source>Camera</source>
        <translation>Kamera</translation>
    </message>
    <message>
        <source>Computer</source>
        <translation>Computer</translation>
    </message>
    <message>
        <source>Reset calculated buffer level after each frame</source>
        <translation>Berechneten Pufferfüllstand nach jedem Frame zurücksetzen</translation>
    </message>
</context>
<context>
    <name>CxDataThroughputGraphPlugin</name>
    <message>
        <source>Data Throughput Graph Tool</source>
        <translation>Datendurchsatz-Diagramm</translation>
    </message>
    <message>
        <source>Measures the available bandwidth during time and shows results in graph.</source>
        <translation>Misst die verfügbare Bandbreite über die Zeit und zeigt die Ergebnisse in einem Diagramm.</translation>
    </message>
</context>
</TS>
