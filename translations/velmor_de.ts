<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>velmor</name>
    <message>
        <source> (not loaded)</source>
        <translation> (nicht geladen)</translation>
    </message>
    <message>
        <source> (not on this computer: %s)</source>
        <translation> (nicht auf diesem Computer: %s)</translation>
    </message>
    <message>
        <source> and %zu more</source>
        <translation> und %zu weitere</translation>
    </message>
    <message>
        <source> from %s to %s</source>
        <translation> von %s auf %s</translation>
    </message>
    <message>
        <source> heading</source>
        <translation>, Überschrift</translation>
    </message>
    <message>
        <source> key</source>
        <translation>, Taste</translation>
    </message>
    <message>
        <source> value</source>
        <translation>, Wert</translation>
    </message>
    <message>
        <source> · no MIDI port to play it to</source>
        <translation> · kein MIDI-Port, an den gespielt wird</translation>
    </message>
    <message>
        <source> · to &apos;%s&apos;</source>
        <translation> · an &apos;%s&apos;</translation>
    </message>
    <message>
        <source>%1 to %2</source>
        <translation>%1 bis %2</translation>
    </message>
    <message>
        <source>%1 × %2 pixels</source>
        <translation>%1 × %2 Pixel</translation>
    </message>
    <message>
        <source>%d change of programs would be lost, because it is not sent or saved. Go on all the same?</source>
        <translation>%d Änderung an Programmen ginge verloren, weil sie nicht gesendet oder gesichert ist. Trotzdem fortfahren?</translation>
    </message>
    <message>
        <source>%d change</source>
        <translation>%d Änderung</translation>
    </message>
    <message>
        <source>%d changes of programs would be lost, because they are not sent or saved. Go on all the same?</source>
        <translation>%d Änderungen an Programmen gingen verloren, weil sie nicht gesendet oder gesichert sind. Trotzdem fortfahren?</translation>
    </message>
    <message>
        <source>%d changes</source>
        <translation>%d Änderungen</translation>
    </message>
    <message>
        <source>%d keygroup</source>
        <translation>%d Keygroup</translation>
    </message>
    <message>
        <source>%d keygroups</source>
        <translation>%d Keygroups</translation>
    </message>
    <message>
        <source>%d keyzone</source>
        <translation>%d Keyzone</translation>
    </message>
    <message>
        <source>%d keyzones</source>
        <translation>%d Keyzones</translation>
    </message>
    <message>
        <source>%d multi</source>
        <translation>%d Multi</translation>
    </message>
    <message>
        <source>%d multis</source>
        <translation>%d Multis</translation>
    </message>
    <message>
        <source>%d of %d AKP files were imported.</source>
        <translation>%d von %d AKP-Dateien wurden importiert.</translation>
    </message>
    <message>
        <source>%d of %d files were converted.</source>
        <translation>%d von %d Dateien wurden konvertiert.</translation>
    </message>
    <message>
        <source>%d of %d samples were uploaded.</source>
        <translation>%d von %d Samples wurden gesendet.</translation>
    </message>
    <message>
        <source>%d parameter</source>
        <translation>%d Parameter</translation>
    </message>
    <message>
        <source>%d parameters</source>
        <translation>%d Parameter</translation>
    </message>
    <message>
        <source>%d program</source>
        <translation>%d Programm</translation>
    </message>
    <message>
        <source>%d programs</source>
        <translation>%d Programme</translation>
    </message>
    <message>
        <source>%d sample</source>
        <translation>%d Sample</translation>
    </message>
    <message>
        <source>%d samples</source>
        <translation>%d Samples</translation>
    </message>
    <message>
        <source>%d track</source>
        <translation>%d Spur</translation>
    </message>
    <message>
        <source>%d tracks</source>
        <translation>%d Spuren</translation>
    </message>
    <message>
        <source>%d value</source>
        <translation>%d Wert</translation>
    </message>
    <message>
        <source>%d values</source>
        <translation>%d Werte</translation>
    </message>
    <message>
        <source>%d:%02d left</source>
        <translation>noch %d:%02d</translation>
    </message>
    <message>
        <source>%d:%02d:%02d left</source>
        <translation>noch %d:%02d:%02d</translation>
    </message>
    <message>
        <source>%s It is kept in this computer as [%s].</source>
        <translation>%s Es ist auf diesem Computer als [%s] gesichert.</translation>
    </message>
    <message>
        <source>%s Its screen comes back by itself.</source>
        <translation>%s Die Anzeige kommt von selbst zurück.</translation>
    </message>
    <message>
        <source>%s Nothing was changed.</source>
        <translation>%s Nichts wurde geändert.</translation>
    </message>
    <message>
        <source>%s The sampler does not call it &apos;%s&apos;, so choose it in the sample list of the keyzone.</source>
        <translation>%s Der Sampler nennt es nicht &apos;%s&apos;; wählen Sie es darum in der Sample-Liste der Keyzone.</translation>
    </message>
    <message>
        <source>%s What it holds is not known, so nothing is sent to it.</source>
        <translation>%s Was er enthält, ist nicht bekannt; darum wird ihm nichts gesendet.</translation>
    </message>
    <message>
        <source>%s answered on exclusive channel %d %s%s.</source>
        <translation>%s hat auf dem Exclusive-Kanal %d %s geantwortet%s.</translation>
    </message>
    <message>
        <source>%s cannot be read: %s.</source>
        <translation>%s lässt sich nicht lesen: %s.</translation>
    </message>
    <message>
        <source>%s cannot be written (code %d).</source>
        <translation>%s lässt sich nicht schreiben (Code %d).</translation>
    </message>
    <message>
        <source>%s cannot be written: %s.</source>
        <translation>%s lässt sich nicht schreiben: %s.</translation>
    </message>
    <message>
        <source>%s has arrived</source>
        <translation>%s angekommen ist</translation>
    </message>
    <message>
        <source>%s has its old name again.</source>
        <translation>%s hat wieder den alten Namen.</translation>
    </message>
    <message>
        <source>%s is %lld, and goes from %lld to %lld.</source>
        <translation>%s ist %lld und geht von %lld bis %lld.</translation>
    </message>
    <message>
        <source>%s is longer than %d characters.</source>
        <translation>%s ist länger als %d Zeichen.</translation>
    </message>
    <message>
        <source>%s is no section of a program.</source>
        <translation>%s ist kein Abschnitt eines Programms.</translation>
    </message>
    <message>
        <source>%s is no text in quotation marks.</source>
        <translation>%s ist kein Text in Anführungszeichen.</translation>
    </message>
    <message>
        <source>%s is no whole number.</source>
        <translation>%s ist keine ganze Zahl.</translation>
    </message>
    <message>
        <source>%s is not on the sampler any more, but had edits. %s</source>
        <translation>%s ist nicht mehr auf dem Sampler, hatte aber Änderungen. %s</translation>
    </message>
    <message>
        <source>%s is not on the sampler any more.</source>
        <translation>%s ist nicht mehr auf dem Sampler.</translation>
    </message>
    <message>
        <source>%s keeps its name.</source>
        <translation>%s behält seinen Namen.</translation>
    </message>
    <message>
        <source>%s of all keygroups</source>
        <translation>%s aller Keygroups</translation>
    </message>
    <message>
        <source>%s of all keyzones of keygroup %d</source>
        <translation>%s aller Keyzones von Keygroup %d</translation>
    </message>
    <message>
        <source>%s of keygroup %d</source>
        <translation>%s von Keygroup %d</translation>
    </message>
    <message>
        <source>%s of keyzone %d of keygroup %d</source>
        <translation>%s von Keyzone %d von Keygroup %d</translation>
    </message>
    <message>
        <source>%s on the sampler is now %s.</source>
        <translation>%s heißt auf dem Sampler jetzt %s.</translation>
    </message>
    <message>
        <source>%s on this computer is now %s.</source>
        <translation>%s heißt auf diesem Computer jetzt %s.</translation>
    </message>
    <message>
        <source>%s stays as it was.</source>
        <translation>%s bleibt, wie es war.</translation>
    </message>
    <message>
        <source>%s unsent</source>
        <translation>%s nicht gesendet</translation>
    </message>
    <message>
        <source>%s was deleted</source>
        <translation>%s gelöscht wurde</translation>
    </message>
    <message>
        <source>%s was kept on this computer as [%s].</source>
        <translation>%s wurde auf diesem Computer als [%s] gesichert.</translation>
    </message>
    <message>
        <source>%s was not deleted.</source>
        <translation>%s wurde nicht gelöscht.</translation>
    </message>
    <message>
        <source>%s was not renamed.</source>
        <translation>%s wurde nicht umbenannt.</translation>
    </message>
    <message>
        <source>%s was not saved.</source>
        <translation>%s wurde nicht gesichert.</translation>
    </message>
    <message>
        <source>%s was not sent.</source>
        <translation>%s wurde nicht gesendet.</translation>
    </message>
    <message>
        <source>%s was pressed.</source>
        <translation>%s wurde gedrückt.</translation>
    </message>
    <message>
        <source>%s was renamed</source>
        <translation>%s umbenannt wurde</translation>
    </message>
    <message>
        <source>%s · %s · %s at this speed%s</source>
        <translation>%s · %s · %s bei diesem Tempo%s</translation>
    </message>
    <message>
        <source>%s · %s · channel %d · </source>
        <translation>%s · %s · Kanal %d · </translation>
    </message>
    <message>
        <source>%s · read %s</source>
        <translation>%s · gelesen %s</translation>
    </message>
    <message>
        <source>%s, may have changed</source>
        <translation>%s, vielleicht nicht mehr richtig</translation>
    </message>
    <message>
        <source>%s. If the sampler shows a new sample without a proper name, that is what came of it: delete it on the sampler.</source>
        <translation>%s. Zeigt der Sampler ein neues Sample ohne richtigen Namen, ist es daraus geworden: Löschen Sie es am Sampler.</translation>
    </message>
    <message>
        <source>%s. The sampler has a sample [%s] in this place: what is left of it is not known. Listen to it, and upload it again if it is damaged.</source>
        <translation>%s. Der Sampler hat an dieser Stelle ein Sample [%s]: Was davon übrig ist, ist nicht bekannt. Hören Sie es an, und senden Sie es noch einmal, wenn es beschädigt ist.</translation>
    </message>
    <message>
        <source>&amp;Copy picture</source>
        <translation>Bild &amp;kopieren</translation>
    </message>
    <message>
        <source>&amp;Save picture...</source>
        <translation>Bild &amp;sichern...</translation>
    </message>
    <message>
        <source>&apos;%s&apos; answered: %s, version %s.</source>
        <translation>&apos;%s&apos; hat geantwortet: %s, Version %s.</translation>
    </message>
    <message>
        <source>&apos;%s&apos; holds what an %s does not know, and what would stay behind: %s.
Upload it all the same?</source>
        <translation>&apos;%s&apos; enthält, was ein %s nicht kennt und was zurückbliebe: %s.
Trotzdem senden?</translation>
    </message>
    <message>
        <source>&apos;%s&apos; is not in the spool.</source>
        <translation>&apos;%s&apos; ist nicht im Spool.</translation>
    </message>
    <message>
        <source>&apos;%s&apos; is still in the list.</source>
        <translation>&apos;%s&apos; steht noch in der Liste.</translation>
    </message>
    <message>
        <source>&apos;%s&apos; was not loaded.</source>
        <translation>&apos;%s&apos; wurde nicht geladen.</translation>
    </message>
    <message>
        <source>&apos;%s&apos; was not removed.</source>
        <translation>&apos;%s&apos; wurde nicht entfernt.</translation>
    </message>
    <message>
        <source>(not loaded)</source>
        <translation>(nicht geladen)</translation>
    </message>
    <message>
        <source>, Keyzone %1: </source>
        <translation>, Keyzone %1: </translation>
    </message>
    <message>
        <source>, channel %u</source>
        <translation>, Kanal %u</translation>
    </message>
    <message>
        <source>, one step</source>
        <translation>, ein Schritt</translation>
    </message>
    <message>
        <source>, track %1</source>
        <translation>, Spur %1</translation>
    </message>
    <message>
        <source>, velocity %1 to %2</source>
        <translation>, Anschlagstärke %1 bis %2</translation>
    </message>
    <message>
        <source>: version %s</source>
        <translation>: Version %s</translation>
    </message>
    <message>
        <source>; %s cannot reach an %s</source>
        <translation>; %s erreichen keinen %s</translation>
    </message>
    <message>
        <source>; not saved yet</source>
        <translation>; noch nicht gesichert</translation>
    </message>
    <message>
        <source>; not sent yet</source>
        <translation>; noch nicht gesendet</translation>
    </message>
    <message>
        <source>A keygroup has at most %d zones.</source>
        <translation>Eine Keygroup hat höchstens %d Zonen.</translation>
    </message>
    <message>
        <source>A keygroup stands in front of the section [program].</source>
        <translation>Eine Keygroup steht vor dem Abschnitt [program].</translation>
    </message>
    <message>
        <source>A program has at most %d keygroups.</source>
        <translation>Ein Programm hat höchstens %d Keygroups.</translation>
    </message>
    <message>
        <source>A sampler on MIDI</source>
        <translation>Ein Sampler an MIDI</translation>
    </message>
    <message>
        <source>A sampler on USB</source>
        <translation>Ein Sampler an USB</translation>
    </message>
    <message>
        <source>A sampler was loaded. &quot;View LCD-Display&quot; in the main window shows its screen.</source>
        <translation>Ein Sampler wurde geladen. &quot;View LCD-Display&quot; im Hauptfenster zeigt seine Anzeige.</translation>
    </message>
    <message>
        <source>A value that is changed goes to every keygroup</source>
        <translation>Ein geänderter Wert geht an jede Keygroup</translation>
    </message>
    <message>
        <source>A value that is changed goes to every keyzone</source>
        <translation>Ein geänderter Wert geht an jede Keyzone</translation>
    </message>
    <message>
        <source>A zone stands in front of the first keygroup.</source>
        <translation>Eine Zone steht vor der ersten Keygroup.</translation>
    </message>
    <message>
        <source>AKP (*.akp *.AKP);;All files (*)</source>
        <translation>AKP (*.akp *.AKP);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Add a keygroup; the sampler learns of it with the next Life Update</source>
        <translation>Fügt eine Keygroup hinzu; der Sampler erfährt davon mit dem nächsten Life Update</translation>
    </message>
    <message>
        <source>Address of the device that passes the messages on to the sampler</source>
        <translation>Adresse des Geräts, das die Meldungen an den Sampler weitergibt</translation>
    </message>
    <message>
        <source>Address:</source>
        <translation>Adresse:</translation>
    </message>
    <message>
        <source>Amplifier (not with this model)</source>
        <translation>Verstärker (nicht bei diesem Modell)</translation>
    </message>
    <message>
        <source>Amplifier envelope</source>
        <translation>Verstärker-Hüllkurve</translation>
    </message>
    <message>
        <source>Amplifier</source>
        <translation>Verstärker</translation>
    </message>
    <message>
        <source>An answer was lost while the list was read. Refresh reads it again.</source>
        <translation>Eine Antwort ging verloren, während die Liste gelesen wurde. Refresh liest sie neu.</translation>
    </message>
    <message>
        <source>Answer of the sampler</source>
        <translation>Antwort des Samplers</translation>
    </message>
    <message>
        <source>Any name by which you know this sampler</source>
        <translation>Irgendein Name, unter dem Sie diesen Sampler kennen</translation>
    </message>
    <message>
        <source>Ask the chosen sampler who it is</source>
        <translation>Fragt den gewählten Sampler, wer er ist</translation>
    </message>
    <message>
        <source>Ask the sampler once more</source>
        <translation>Fragt den Sampler noch einmal</translation>
    </message>
    <message>
        <source>Ask the sampler who it is</source>
        <translation>Fragt den Sampler, wer er ist</translation>
    </message>
    <message>
        <source>Asking ...</source>
        <translation>Wird gefragt ...</translation>
    </message>
    <message>
        <source>Asking the sampler for its screen ...</source>
        <translation>Der Sampler wird nach seiner Anzeige gefragt ...</translation>
    </message>
    <message>
        <source>Attack</source>
        <translation>Attack</translation>
    </message>
    <message>
        <source>Auxiliary (not with this model)</source>
        <translation>Auxiliary (nicht bei diesem Modell)</translation>
    </message>
    <message>
        <source>Auxiliary envelope</source>
        <translation>Auxiliary-Hüllkurve</translation>
    </message>
    <message>
        <source>Auxiliary</source>
        <translation>Auxiliary</translation>
    </message>
    <message>
        <source>Bring the chosen program and every sample it names to this computer</source>
        <translation>Holt das gewählte Programm und jedes Sample, das es nennt, auf diesen Computer</translation>
    </message>
    <message>
        <source>CTRL-Ch:</source>
        <translation>CTRL-Ch:</translation>
    </message>
    <message>
        <source>Change the name, the model or the channels of this entry</source>
        <translation>Ändert Namen, Modell oder Kanäle dieses Eintrags</translation>
    </message>
    <message>
        <source>Changed</source>
        <translation>Geändert</translation>
    </message>
    <message>
        <source>Choose AKP program files and bring them to this computer</source>
        <translation>Wählt AKP-Programmdateien und holt sie auf diesen Computer</translation>
    </message>
    <message>
        <source>Choose a keygroup first!</source>
        <translation>Wählen Sie zuerst eine Keygroup!</translation>
    </message>
    <message>
        <source>Choose a program first!</source>
        <translation>Wählen Sie zuerst ein Programm!</translation>
    </message>
    <message>
        <source>Choose a program on the sampler first!</source>
        <translation>Wählen Sie zuerst ein Programm auf dem Sampler!</translation>
    </message>
    <message>
        <source>Choose a program on this computer first!</source>
        <translation>Wählen Sie zuerst ein Programm auf diesem Computer!</translation>
    </message>
    <message>
        <source>Choose a sampler in the list first.</source>
        <translation>Wählen Sie zuerst einen Sampler in der Liste.</translation>
    </message>
    <message>
        <source>Choose one way. More samplers can be added later, of either kind.</source>
        <translation>Wählen Sie einen Weg. Weitere Sampler lassen sich später hinzufügen, von beiden Arten.</translation>
    </message>
    <message>
        <source>Choose the MIDI ports and the folder for your samples</source>
        <translation>Wählt die MIDI-Ports und den Ordner für Ihre Samples</translation>
    </message>
    <message>
        <source>Close the program</source>
        <translation>Beendet das Programm</translation>
    </message>
    <message>
        <source>Close this window</source>
        <translation>Schließt dieses Fenster</translation>
    </message>
    <message>
        <source>Close without saving</source>
        <translation>Schließt, ohne zu sichern</translation>
    </message>
    <message>
        <source>Connection</source>
        <translation>Verbindung</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Decay</source>
        <translation>Decay</translation>
    </message>
    <message>
        <source>Delete Program File</source>
        <translation>Programmdatei löschen</translation>
    </message>
    <message>
        <source>Delete the chosen keygroup; the sampler is told at once</source>
        <translation>Löscht die gewählte Keygroup; der Sampler erfährt es sofort</translation>
    </message>
    <message>
        <source>Delete the chosen program from the sampler&apos;s memory</source>
        <translation>Löscht das gewählte Programm aus dem Speicher des Samplers</translation>
    </message>
    <message>
        <source>Deleted %s from this computer.</source>
        <translation>%s von diesem Computer gelöscht.</translation>
    </message>
    <message>
        <source>Deleted %s from this computer: its file is [%s] now.</source>
        <translation>%s von diesem Computer gelöscht: Die Datei ist jetzt [%s].</translation>
    </message>
    <message>
        <source>Deleted %s on the sampler.</source>
        <translation>%s auf dem Sampler gelöscht.</translation>
    </message>
    <message>
        <source>Deleted keygroup %d of %s.</source>
        <translation>Keygroup %d von %s gelöscht.</translation>
    </message>
    <message>
        <source>Done again: %s</source>
        <translation>Wiederholt: %s</translation>
    </message>
    <message>
        <source>Download</source>
        <translation>Download</translation>
    </message>
    <message>
        <source>Downloaded %s.</source>
        <translation>%s geholt.</translation>
    </message>
    <message>
        <source>Drag a point to change it</source>
        <translation>Ziehen Sie an einem Punkt, um ihn zu ändern</translation>
    </message>
    <message>
        <source>Each keygroup over its keys; drag an edge to change its range, press a key to hear it</source>
        <translation>Jede Keygroup über ihren Tasten; an einer Kante ziehen ändert den Bereich, eine Taste lässt sie hören</translation>
    </message>
    <message>
        <source>Earlier place in the log</source>
        <translation>Frühere Stelle im Log</translation>
    </message>
    <message>
        <source>Edit...</source>
        <translation>Bearbeiten...</translation>
    </message>
    <message>
        <source>End all notes of the MIDI channel above</source>
        <translation>Beendet alle Noten auf dem MIDI-Kanal darüber</translation>
    </message>
    <message>
        <source>End the monitor</source>
        <translation>Beendet den Monitor</translation>
    </message>
    <message>
        <source>End the note</source>
        <translation>Beendet die Note</translation>
    </message>
    <message>
        <source>Envelope 2</source>
        <translation>Hüllkurve 2</translation>
    </message>
    <message>
        <source>Envelopes</source>
        <translation>Hüllkurven</translation>
    </message>
    <message>
        <source>Every note is played as loud as the file has it</source>
        <translation>Jede Note wird so laut gespielt, wie die Datei sie hat</translation>
    </message>
    <message>
        <source>Fetch, send, rename, delete and import samples</source>
        <translation>Samples holen, senden, umbenennen, löschen und importieren</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Filter (not with this model)</source>
        <translation>Filter (nicht bei diesem Modell)</translation>
    </message>
    <message>
        <source>Filter envelope</source>
        <translation>Filter-Hüllkurve</translation>
    </message>
    <message>
        <source>Find in the spool and upload</source>
        <translation>Im Spool suchen und senden</translation>
    </message>
    <message>
        <source>For example S3000 in the rack</source>
        <translation>Zum Beispiel S3000 im Rack</translation>
    </message>
    <message>
        <source>Forced Channel</source>
        <translation>Erzwungener Kanal</translation>
    </message>
    <message>
        <source>Give the chosen program of this computer the name in the field</source>
        <translation>Gibt dem gewählten Programm dieses Computers den Namen im Feld</translation>
    </message>
    <message>
        <source>Give the chosen program the name in the field</source>
        <translation>Gibt dem gewählten Programm den Namen im Feld</translation>
    </message>
    <message>
        <source>Give the sampler the name in the field</source>
        <translation>Gibt dem Sampler den Namen im Feld</translation>
    </message>
    <message>
        <source>Hardware:</source>
        <translation>Hardware:</translation>
    </message>
    <message>
        <source>Hide </source>
        <translation>Ausblenden: </translation>
    </message>
    <message>
        <source>High note</source>
        <translation>Oberste Note</translation>
    </message>
    <message>
        <source>How hard it is played</source>
        <translation>Wie stark sie angeschlagen wird</translation>
    </message>
    <message>
        <source>How is your sampler connected?</source>
        <translation>Wie ist Ihr Sampler angeschlossen?</translation>
    </message>
    <message>
        <source>How many multis, and when they were read</source>
        <translation>Wie viele Multis, und wann sie gelesen wurden</translation>
    </message>
    <message>
        <source>How many programs there are on this computer</source>
        <translation>Wie viele Programme auf diesem Computer sind</translation>
    </message>
    <message>
        <source>How many programs, and when they were read</source>
        <translation>Wie viele Programme, und wann sie gelesen wurden</translation>
    </message>
    <message>
        <source>How the sampler is reached, and whether it answered last</source>
        <translation>Wie der Sampler erreicht wird, und ob er zuletzt geantwortet hat</translation>
    </message>
    <message>
        <source>IN from OUT</source>
        <translation>IN von OUT</translation>
    </message>
    <message>
        <source>In its place the sampler has the program [%s]. </source>
        <translation>An seiner Stelle hat der Sampler das Programm [%s]. </translation>
    </message>
    <message>
        <source>Interfaces:</source>
        <translation>Schnittstellen:</translation>
    </message>
    <message>
        <source>It came damaged from the sampler: its checksum is wrong. </source>
        <translation>Es kam beschädigt vom Sampler: Seine Prüfsumme ist falsch. </translation>
    </message>
    <message>
        <source>It changed while it was read.</source>
        <translation>Es änderte sich, während es gelesen wurde.</translation>
    </message>
    <message>
        <source>It does not send. Is the interface still connected?</source>
        <translation>Er sendet nicht. Ist die Schnittstelle noch angeschlossen?</translation>
    </message>
    <message>
        <source>It has %u channels, and these options make nothing of them. Choose Keep original for the channels.</source>
        <translation>Es hat %u Kanäle, und diese Optionen machen nichts daraus. Wählen Sie bei den Kanälen Keep original.</translation>
    </message>
    <message>
        <source>It has one channel, and these options make nothing of it. Choose Keep original for the channels.</source>
        <translation>Es hat einen Kanal, und diese Optionen machen nichts daraus. Wählen Sie bei den Kanälen Keep original.</translation>
    </message>
    <message>
        <source>It holds no sound that can be read.</source>
        <translation>Es enthält keinen Klang, der sich lesen lässt.</translation>
    </message>
    <message>
        <source>It is longer than a WAV file can be.</source>
        <translation>Es ist länger, als eine WAV-Datei sein kann.</translation>
    </message>
    <message>
        <source>Its new rate or depth cannot be told in a file of the spool. Choose another one.</source>
        <translation>Die neue Rate oder Wortbreite lässt sich in einer Datei des Spools nicht angeben. Wählen Sie eine andere.</translation>
    </message>
    <message>
        <source>Its port</source>
        <translation>Dessen Port</translation>
    </message>
    <message>
        <source>Keep the picture as a file, as large as it is shown</source>
        <translation>Sichert das Bild als Datei, so groß, wie es gezeigt wird</translation>
    </message>
    <message>
        <source>Keep the whole log, what is not shown too, as a text file</source>
        <translation>Sichert das ganze Log als Textdatei, auch was nicht gezeigt wird</translation>
    </message>
    <message>
        <source>Keep these settings</source>
        <translation>Behält diese Einstellungen</translation>
    </message>
    <message>
        <source>Keep this sampler in the list</source>
        <translation>Behält diesen Sampler in der Liste</translation>
    </message>
    <message>
        <source>Key map</source>
        <translation>Tastenplan</translation>
    </message>
    <message>
        <source>Key map: </source>
        <translation>Tastenplan: </translation>
    </message>
    <message>
        <source>Key range</source>
        <translation>Tastenbereich</translation>
    </message>
    <message>
        <source>Keygroup %1, %2 to %3</source>
        <translation>Keygroup %1, %2 bis %3</translation>
    </message>
    <message>
        <source>Keygroup %d added</source>
        <translation>Keygroup %d hinzugefügt</translation>
    </message>
    <message>
        <source>Keygroup %d deleted</source>
        <translation>Keygroup %d gelöscht</translation>
    </message>
    <message>
        <source>Keygroup %d of %d: %s to %s</source>
        <translation>Keygroup %d von %d: %s bis %s</translation>
    </message>
    <message>
        <source>Keygroup %d was not deleted.</source>
        <translation>Keygroup %d wurde nicht gelöscht.</translation>
    </message>
    <message>
        <source>Keygroup parameters</source>
        <translation>Parameter der Keygroup</translation>
    </message>
    <message>
        <source>Keygroup</source>
        <translation>Keygroup</translation>
    </message>
    <message>
        <source>Keygroups</source>
        <translation>Keygroups</translation>
    </message>
    <message>
        <source>Keys typed on this computer go to the sampler.</source>
        <translation>Tasten, die auf diesem Computer gedrückt werden, gehen an den Sampler.</translation>
    </message>
    <message>
        <source>Keyzone parameters</source>
        <translation>Parameter der Keyzone</translation>
    </message>
    <message>
        <source>Keyzone</source>
        <translation>Keyzone</translation>
    </message>
    <message>
        <source>Last outcome</source>
        <translation>Letztes Ergebnis</translation>
    </message>
    <message>
        <source>Later place in the log</source>
        <translation>Spätere Stelle im Log</translation>
    </message>
    <message>
        <source>Level 1</source>
        <translation>Pegel 1</translation>
    </message>
    <message>
        <source>Level 2</source>
        <translation>Pegel 2</translation>
    </message>
    <message>
        <source>Level 3</source>
        <translation>Pegel 3</translation>
    </message>
    <message>
        <source>Level 4</source>
        <translation>Pegel 4</translation>
    </message>
    <message>
        <source>Listening to &apos;%s&apos;: %lu received, %lu passed on.</source>
        <translation>Hört auf &apos;%s&apos;: %lu empfangen, %lu weitergegeben.</translation>
    </message>
    <message>
        <source>Loaded &apos;%s&apos;.</source>
        <translation>&apos;%s&apos; geladen.</translation>
    </message>
    <message>
        <source>Loaded sampler</source>
        <translation>Geladener Sampler</translation>
    </message>
    <message>
        <source>Log</source>
        <translation>Log</translation>
    </message>
    <message>
        <source>Look again which samplers the folder holds</source>
        <translation>Sieht noch einmal nach, welche Sampler der Ordner enthält</translation>
    </message>
    <message>
        <source>Looking for samplers on the USB...</source>
        <translation>Suche nach Samplern am USB...</translation>
    </message>
    <message>
        <source>Low note</source>
        <translation>Unterste Note</translation>
    </message>
    <message>
        <source>MIDI &apos;%s&apos;</source>
        <translation>MIDI &apos;%s&apos;</translation>
    </message>
    <message>
        <source>MIDI-Ch:</source>
        <translation>MIDI-Ch:</translation>
    </message>
    <message>
        <source>MIDI-In (Monitor):</source>
        <translation>MIDI-In (Monitor):</translation>
    </message>
    <message>
        <source>MIDI-In:</source>
        <translation>MIDI-In:</translation>
    </message>
    <message>
        <source>MIDI-Out:</source>
        <translation>MIDI-Out:</translation>
    </message>
    <message>
        <source>Make the edit again that was taken back last</source>
        <translation>Macht die Änderung noch einmal, die zuletzt zurückgenommen wurde</translation>
    </message>
    <message>
        <source>Monitor and thru</source>
        <translation>Monitor und Thru</translation>
    </message>
    <message>
        <source>Monitor:</source>
        <translation>Monitor:</translation>
    </message>
    <message>
        <source>Move the chosen program of this computer to the folder of deleted files</source>
        <translation>Verschiebt das gewählte Programm dieses Computers in den Ordner der gelöschten Dateien</translation>
    </message>
    <message>
        <source>Multis stay in the sampler: there is nothing here that could keep one</source>
        <translation>Multis bleiben im Sampler: Hier kann keines aufbewahrt werden</translation>
    </message>
    <message>
        <source>Multis</source>
        <translation>Multis</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>New name on the sampler</source>
        <translation>Neuer Name auf dem Sampler</translation>
    </message>
    <message>
        <source>New name on this computer</source>
        <translation>Neuer Name auf diesem Computer</translation>
    </message>
    <message>
        <source>New name</source>
        <translation>Neuer Name</translation>
    </message>
    <message>
        <source>No MIDI port is chosen for the way to the sampler or back. Choose MIDI-Out and MIDI-In in Basic settings.</source>
        <translation>Für den Weg zum Sampler oder zurück ist kein MIDI-Port gewählt. Wählen Sie MIDI-Out und MIDI-In in Basic settings.</translation>
    </message>
    <message>
        <source>No MIDI ports found</source>
        <translation>Keine MIDI-Ports gefunden</translation>
    </message>
    <message>
        <source>No USB sampler selected!</source>
        <translation>Kein USB-Sampler gewählt!</translation>
    </message>
    <message>
        <source>No answer came from the sampler.</source>
        <translation>Vom Sampler kam keine Antwort.</translation>
    </message>
    <message>
        <source>No answer came that could be used.</source>
        <translation>Es kam keine brauchbare Antwort.</translation>
    </message>
    <message>
        <source>No answer came.</source>
        <translation>Es kam keine Antwort.</translation>
    </message>
    <message>
        <source>No answer from &apos;%s&apos; on the USB. Is the sampler on, and its cable plugged in?</source>
        <translation>Keine Antwort von &apos;%s&apos; am USB. Ist der Sampler eingeschaltet und sein Kabel angeschlossen?</translation>
    </message>
    <message>
        <source>No answer on exclusive channel %d %s. Is the sampler on? Its channel stands on its own MIDI page.</source>
        <translation>Keine Antwort auf dem Exclusive-Kanal %d %s. Ist der Sampler eingeschaltet? Sein Kanal steht auf seiner eigenen MIDI-Seite.</translation>
    </message>
    <message>
        <source>No edit was undone.</source>
        <translation>Keine Änderung wurde zurückgenommen.</translation>
    </message>
    <message>
        <source>No file is loaded</source>
        <translation>Keine Datei geladen</translation>
    </message>
    <message>
        <source>No file is loaded. Load a Standard MIDI File, or drop one here.</source>
        <translation>Keine Datei geladen. Laden Sie ein Standard MIDI File, oder ziehen Sie eines hierher.</translation>
    </message>
    <message>
        <source>No keygroup chosen</source>
        <translation>Keine Keygroup gewählt</translation>
    </message>
    <message>
        <source>No keygroup</source>
        <translation>Keine Keygroup</translation>
    </message>
    <message>
        <source>No keyzone is chosen.</source>
        <translation>Keine Keyzone gewählt.</translation>
    </message>
    <message>
        <source>No keyzone</source>
        <translation>Keine Keyzone</translation>
    </message>
    <message>
        <source>No model is called &apos;%s&apos;.</source>
        <translation>Kein Modell heißt &apos;%s&apos;.</translation>
    </message>
    <message>
        <source>No multis. Only an S5000 or S6000 tells what multis it holds.</source>
        <translation>Keine Multis. Nur ein S5000 oder S6000 sagt, welche Multis er enthält.</translation>
    </message>
    <message>
        <source>No program chosen</source>
        <translation>Kein Programm gewählt</translation>
    </message>
    <message>
        <source>No programs on this computer yet</source>
        <translation>Noch keine Programme auf diesem Computer</translation>
    </message>
    <message>
        <source>No sampler configured yet: Settings, Manage MIDI Samplers</source>
        <translation>Noch kein Sampler eingerichtet: Settings, Manage MIDI Samplers</translation>
    </message>
    <message>
        <source>No sampler found on the USB</source>
        <translation>Kein Sampler am USB gefunden</translation>
    </message>
    <message>
        <source>No sampler loaded</source>
        <translation>Kein Sampler geladen</translation>
    </message>
    <message>
        <source>No sampler was found on the USB. Is it on, and its cable plugged in? Open this window again to look again.</source>
        <translation>Am USB wurde kein Sampler gefunden. Ist er eingeschaltet und sein Kabel angeschlossen? Öffnen Sie dieses Fenster noch einmal, um wieder nachzusehen.</translation>
    </message>
    <message>
        <source>Not every program of this computer could be loaded.</source>
        <translation>Nicht jedes Programm dieses Computers ließ sich laden.</translation>
    </message>
    <message>
        <source>Not everything could be put back.</source>
        <translation>Nicht alles ließ sich zurückbringen.</translation>
    </message>
    <message>
        <source>Not now: the sampler&apos;s list could not be read. Try again first.</source>
        <translation>Jetzt nicht: Die Liste des Samplers ließ sich nicht lesen. Versuchen Sie zuerst, sie zu lesen.</translation>
    </message>
    <message>
        <source>Not read yet from this sampler. Refresh reads it.</source>
        <translation>Von diesem Sampler noch nicht gelesen. Refresh liest sie.</translation>
    </message>
    <message>
        <source>Notes over time, %1 of them</source>
        <translation>Noten über der Zeit, %1 Stück</translation>
    </message>
    <message>
        <source>Nothing is edited</source>
        <translation>Nichts ist geändert</translation>
    </message>
    <message>
        <source>Nothing plays</source>
        <translation>Nichts spielt</translation>
    </message>
    <message>
        <source>Nothing was changed on the sampler.</source>
        <translation>Auf dem Sampler wurde nichts geändert.</translation>
    </message>
    <message>
        <source>Nothing was sent, because the sampler&apos;s list could not be read.
%s</source>
        <translation>Nichts wurde gesendet, weil sich die Liste des Samplers nicht lesen ließ.
%s</translation>
    </message>
    <message>
        <source>Nothing was sent: the sampler&apos;s list could not be read.</source>
        <translation>Nichts wurde gesendet: Die Liste des Samplers ließ sich nicht lesen.</translation>
    </message>
    <message>
        <source>OS-Version:</source>
        <translation>OS-Version:</translation>
    </message>
    <message>
        <source>OUT to IN</source>
        <translation>OUT an IN</translation>
    </message>
    <message>
        <source>Of a keygroup of this model only the keys are edited: drag its edges in the key map.</source>
        <translation>Von einer Keygroup dieses Modells werden nur die Tasten geändert: Ziehen Sie an ihren Kanten im Tastenplan.</translation>
    </message>
    <message>
        <source>Of a keyzone of this model only the sample is edited.</source>
        <translation>Von einer Keyzone dieses Modells wird nur das Sample geändert.</translation>
    </message>
    <message>
        <source>On the sampler</source>
        <translation>Auf dem Sampler</translation>
    </message>
    <message>
        <source>On this computer</source>
        <translation>Auf diesem Computer</translation>
    </message>
    <message>
        <source>One step of the wheel. The mouse wheel over the screen turns it too.</source>
        <translation>Ein Schritt des Rads. Das Mausrad über der Anzeige dreht es auch.</translation>
    </message>
    <message>
        <source>Open a Standard MIDI File</source>
        <translation>Öffnet ein Standard MIDI File</translation>
    </message>
    <message>
        <source>Open the folder of your samplers</source>
        <translation>Öffnet den Ordner Ihrer Sampler</translation>
    </message>
    <message>
        <source>Outcome of the search</source>
        <translation>Ergebnis der Suche</translation>
    </message>
    <message>
        <source>Parameters</source>
        <translation>Parameter</translation>
    </message>
    <message>
        <source>Pass on what comes in to the sampler, and tell it in the log</source>
        <translation>Gibt an den Sampler weiter, was hereinkommt, und schreibt es ins Log</translation>
    </message>
    <message>
        <source>Pictures (*.png)</source>
        <translation>Bilder (*.png)</translation>
    </message>
    <message>
        <source>Play a Standard MIDI File to the sampler</source>
        <translation>Spielt dem Sampler ein Standard MIDI File vor</translation>
    </message>
    <message>
        <source>Play it to the sampler from its beginning</source>
        <translation>Spielt sie dem Sampler von Anfang an vor</translation>
    </message>
    <message>
        <source>Play the note on the MIDI channel above</source>
        <translation>Spielt die Note auf dem MIDI-Kanal darüber</translation>
    </message>
    <message>
        <source>Playing &apos;%s&apos;.</source>
        <translation>&apos;%s&apos; spielt.</translation>
    </message>
    <message>
        <source>Please choose a name for the sampler, without / and \.</source>
        <translation>Bitte wählen Sie für den Sampler einen Namen ohne / und \.</translation>
    </message>
    <message>
        <source>Please enter a name for the sampler.</source>
        <translation>Bitte geben Sie einen Namen für den Sampler ein.</translation>
    </message>
    <message>
        <source>Port:</source>
        <translation>Port:</translation>
    </message>
    <message>
        <source>Programs</source>
        <translation>Programme</translation>
    </message>
    <message>
        <source>Put %s back.</source>
        <translation>%s zurückbringen.</translation>
    </message>
    <message>
        <source>Put back %s, as read</source>
        <translation>Zurück auf %s, wie gelesen</translation>
    </message>
    <message>
        <source>Put back what was deleted, renamed or edited on this computer last</source>
        <translation>Bringt zurück, was auf diesem Computer zuletzt gelöscht, umbenannt oder bearbeitet wurde</translation>
    </message>
    <message>
        <source>Put the picture on the clipboard, as large as it is shown</source>
        <translation>Legt das Bild in die Zwischenablage, so groß, wie es gezeigt wird</translation>
    </message>
    <message>
        <source>Put the sampler &apos;%s&apos; back.</source>
        <translation>Den Sampler &apos;%s&apos; zurückbringen.</translation>
    </message>
    <message>
        <source>Put what is chosen in the log on the clipboard, or all that it shows</source>
        <translation>Legt in die Zwischenablage, was im Log gewählt ist, oder alles, was es zeigt</translation>
    </message>
    <message>
        <source>Rate 1</source>
        <translation>Rate 1</translation>
    </message>
    <message>
        <source>Rate 2</source>
        <translation>Rate 2</translation>
    </message>
    <message>
        <source>Rate 3</source>
        <translation>Rate 3</translation>
    </message>
    <message>
        <source>Rate 4</source>
        <translation>Rate 4</translation>
    </message>
    <message>
        <source>Read the list again to see what is there.</source>
        <translation>Lesen Sie die Liste noch einmal, um zu sehen, was da ist.</translation>
    </message>
    <message>
        <source>Read the list again</source>
        <translation>Liste noch einmal lesen</translation>
    </message>
    <message>
        <source>Read the sampler and this computer anew</source>
        <translation>Liest den Sampler und diesen Computer neu</translation>
    </message>
    <message>
        <source>Read the sampler anew</source>
        <translation>Liest den Sampler neu</translation>
    </message>
    <message>
        <source>Redo Edit</source>
        <translation>Änderung wiederholen</translation>
    </message>
    <message>
        <source>Release</source>
        <translation>Release</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>Removed the sampler &apos;%s&apos; from the list.</source>
        <translation>Den Sampler &apos;%s&apos; aus der Liste entfernt.</translation>
    </message>
    <message>
        <source>Rename Program File</source>
        <translation>Programmdatei umbenennen</translation>
    </message>
    <message>
        <source>Renaming was stopped. Nothing was changed on the sampler.</source>
        <translation>Das Umbenennen wurde angehalten. Auf dem Sampler wurde nichts geändert.</translation>
    </message>
    <message>
        <source>S5000, S6000, Z4, Z8 or MPC 4000 on a USB cable. Switch it on; it is found by itself, and its name and version are read.</source>
        <translation>S5000, S6000, Z4, Z8 oder MPC 4000 an einem USB-Kabel. Schalten Sie ihn ein; er wird von selbst gefunden, und Name und Version werden gelesen.</translation>
    </message>
    <message>
        <source>S900 to S3200, with MIDI IN and MIDI OUT both connected to this computer. You name the model and the exclusive channel that its own MIDI page shows.</source>
        <translation>S900 bis S3200, mit MIDI IN und MIDI OUT an diesem Computer. Sie nennen das Modell und den Exclusive-Kanal, den seine eigene MIDI-Seite zeigt.</translation>
    </message>
    <message>
        <source>Sample of keyzone %d of keygroup %d</source>
        <translation>Sample von Keyzone %d von Keygroup %d</translation>
    </message>
    <message>
        <source>Sampler and connection</source>
        <translation>Sampler und Verbindung</translation>
    </message>
    <message>
        <source>Samplers</source>
        <translation>Sampler</translation>
    </message>
    <message>
        <source>Samples of a program of this computer are sent with the program.</source>
        <translation>Samples eines Programms dieses Computers werden mit dem Programm gesendet.</translation>
    </message>
    <message>
        <source>Samples</source>
        <translation>Samples</translation>
    </message>
    <message>
        <source>Save it as a WAV file first.</source>
        <translation>Sichern Sie sie zuerst als WAV-Datei.</translation>
    </message>
    <message>
        <source>Save log...</source>
        <translation>Log sichern...</translation>
    </message>
    <message>
        <source>Save picture</source>
        <translation>Bild sichern</translation>
    </message>
    <message>
        <source>Save the program [%s]? %s</source>
        <translation>Das Programm [%s] sichern? %s</translation>
    </message>
    <message>
        <source>Saved %s as [%s].</source>
        <translation>%s als [%s] gesichert.</translation>
    </message>
    <message>
        <source>Saved the changes of the sampler &apos;%s&apos;.</source>
        <translation>Die Änderungen am Sampler &apos;%s&apos; gesichert.</translation>
    </message>
    <message>
        <source>Saved the log as %s.</source>
        <translation>Das Log als %s gesichert.</translation>
    </message>
    <message>
        <source>Saving was stopped. %s</source>
        <translation>Das Sichern wurde angehalten. %s</translation>
    </message>
    <message>
        <source>Saving was stopped. Nothing was changed on the sampler.</source>
        <translation>Das Sichern wurde angehalten. Auf dem Sampler wurde nichts geändert.</translation>
    </message>
    <message>
        <source>Saving was stopped. The program on the sampler holds a part of the changes.</source>
        <translation>Das Sichern wurde angehalten. Das Programm auf dem Sampler enthält einen Teil der Änderungen.</translation>
    </message>
    <message>
        <source>Screen of the sampler</source>
        <translation>Anzeige des Samplers</translation>
    </message>
    <message>
        <source>Search in the log</source>
        <translation>Im Log suchen</translation>
    </message>
    <message>
        <source>Search programs on the sampler</source>
        <translation>Programme auf dem Sampler suchen</translation>
    </message>
    <message>
        <source>Search programs on this computer</source>
        <translation>Programme auf diesem Computer suchen</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>See the multis on the sampler</source>
        <translation>Zeigt die Multis auf dem Sampler</translation>
    </message>
    <message>
        <source>See the sampler&apos;s screen and press its keys from here</source>
        <translation>Zeigt die Anzeige des Samplers und drückt seine Tasten von hier aus</translation>
    </message>
    <message>
        <source>See, edit, send, keep, rename and delete programs</source>
        <translation>Programme ansehen, ändern, senden, sichern, umbenennen und löschen</translation>
    </message>
    <message>
        <source>Send the chosen program of this computer to the sampler</source>
        <translation>Sendet das gewählte Programm dieses Computers an den Sampler</translation>
    </message>
    <message>
        <source>Send the messages over the network</source>
        <translation>Sendet die Meldungen über das Netz</translation>
    </message>
    <message>
        <source>Send the messages to the MIDI port again</source>
        <translation>Sendet die Meldungen wieder an den MIDI-Port</translation>
    </message>
    <message>
        <source>Send the program as it stands here to the sampler</source>
        <translation>Sendet das Programm, wie es hier steht, an den Sampler</translation>
    </message>
    <message>
        <source>Send the spool&apos;s file of that name to the sampler</source>
        <translation>Sendet die Datei dieses Namens aus dem Spool an den Sampler</translation>
    </message>
    <message>
        <source>Sending %s was stopped.</source>
        <translation>Das Senden von %s wurde angehalten.</translation>
    </message>
    <message>
        <source>Sent %s to the sampler.</source>
        <translation>%s an den Sampler gesendet.</translation>
    </message>
    <message>
        <source>Show </source>
        <translation>Einblenden: </translation>
    </message>
    <message>
        <source>Show %1</source>
        <translation>Zeige %1</translation>
    </message>
    <message>
        <source>Show %1, %2 lines</source>
        <translation>Zeige %1, %2 Zeilen</translation>
    </message>
    <message>
        <source>Show every parameter of the keygroup</source>
        <translation>Zeigt jeden Parameter der Keygroup</translation>
    </message>
    <message>
        <source>Show every parameter of the keyzone</source>
        <translation>Zeigt jeden Parameter der Keyzone</translation>
    </message>
    <message>
        <source>Show every parameter of the program</source>
        <translation>Zeigt jeden Parameter des Programms</translation>
    </message>
    <message>
        <source>Show its folder</source>
        <translation>Seinen Ordner zeigen</translation>
    </message>
    <message>
        <source>Show only names that contain these letters</source>
        <translation>Zeigt nur Namen, die diese Buchstaben enthalten</translation>
    </message>
    <message>
        <source>Show the chosen program</source>
        <translation>Zeigt das gewählte Programm</translation>
    </message>
    <message>
        <source>Show the envelopes of the keygroup</source>
        <translation>Zeigt die Hüllkurven der Keygroup</translation>
    </message>
    <message>
        <source>Show the screen as large as it is</source>
        <translation>Zeigt die Anzeige so groß, wie sie ist</translation>
    </message>
    <message>
        <source>Show the screen three times as large</source>
        <translation>Zeigt die Anzeige dreimal so groß</translation>
    </message>
    <message>
        <source>Show the screen twice as large</source>
        <translation>Zeigt die Anzeige doppelt so groß</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Something answered on exclusive channel %d %s, but not as %s does. Is the right model chosen?</source>
        <translation>Etwas hat auf dem Exclusive-Kanal %d %s geantwortet, aber nicht wie ein %s. Ist das richtige Modell gewählt?</translation>
    </message>
    <message>
        <source>Sounding notes</source>
        <translation>Klingende Noten</translation>
    </message>
    <message>
        <source>Sounding now:</source>
        <translation>Es klingt:</translation>
    </message>
    <message>
        <source>Sounding:</source>
        <translation>Klingt:</translation>
    </message>
    <message>
        <source>Standard MIDI Files (*.mid *.MID *.midi *.kar);;All files (*)</source>
        <translation>Standard MIDI Files (*.mid *.MID *.midi *.kar);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>State of the list</source>
        <translation>Stand der Liste</translation>
    </message>
    <message>
        <source>State of the sampler&apos;s list</source>
        <translation>Stand der Liste des Samplers</translation>
    </message>
    <message>
        <source>State of the screen</source>
        <translation>Stand der Anzeige</translation>
    </message>
    <message>
        <source>State of this computer&apos;s list</source>
        <translation>Stand der Liste dieses Computers</translation>
    </message>
    <message>
        <source>Status:</source>
        <translation>Status:</translation>
    </message>
    <message>
        <source>Stop, and close this window</source>
        <translation>Hält an und schließt dieses Fenster</translation>
    </message>
    <message>
        <source>Stop, and end all notes</source>
        <translation>Hält an und beendet alle Noten</translation>
    </message>
    <message>
        <source>Stop, and put the file away</source>
        <translation>Hält an und legt die Datei weg</translation>
    </message>
    <message>
        <source>Stopped &apos;%s&apos;.</source>
        <translation>&apos;%s&apos; angehalten.</translation>
    </message>
    <message>
        <source>Sustain</source>
        <translation>Sustain</translation>
    </message>
    <message>
        <source>Sysex-Ch:</source>
        <translation>Sysex-Ch:</translation>
    </message>
    <message>
        <source>Take the last edit of this program back</source>
        <translation>Nimmt die letzte Änderung dieses Programms zurück</translation>
    </message>
    <message>
        <source>Take this entry out of the list; Undo puts it back</source>
        <translation>Nimmt diesen Eintrag aus der Liste; Undo bringt ihn zurück</translation>
    </message>
    <message>
        <source>Tell the program about a sampler that is connected by MIDI</source>
        <translation>Nennt dem Programm einen Sampler, der an MIDI angeschlossen ist</translation>
    </message>
    <message>
        <source>Tell the program about a sampler that is connected by USB</source>
        <translation>Nennt dem Programm einen Sampler, der an USB angeschlossen ist</translation>
    </message>
    <message>
        <source>Test note</source>
        <translation>Testnote</translation>
    </message>
    <message>
        <source>The MIDI output does not send. Is the interface still connected?</source>
        <translation>Der MIDI-Ausgang sendet nicht. Ist die Schnittstelle noch angeschlossen?</translation>
    </message>
    <message>
        <source>The MIDI output failed: %s</source>
        <translation>Der MIDI-Ausgang versagte: %s</translation>
    </message>
    <message>
        <source>The MIDI ports of this computer</source>
        <translation>Die MIDI-Ports dieses Computers</translation>
    </message>
    <message>
        <source>The TCP bridge is busy with another message.</source>
        <translation>Die TCP-Bridge ist mit einer anderen Meldung beschäftigt.</translation>
    </message>
    <message>
        <source>The TCP bridge was switched off.</source>
        <translation>Die TCP-Bridge wurde ausgeschaltet.</translation>
    </message>
    <message>
        <source>The answer broke off.</source>
        <translation>Die Antwort brach ab.</translation>
    </message>
    <message>
        <source>The basic channel of the sampler</source>
        <translation>Der Basiskanal des Samplers</translation>
    </message>
    <message>
        <source>The channel on which the sampler plays notes</source>
        <translation>Der Kanal, auf dem der Sampler Noten spielt</translation>
    </message>
    <message>
        <source>The control channel</source>
        <translation>Der Steuerkanal</translation>
    </message>
    <message>
        <source>The disk is full: there is no room for %s.</source>
        <translation>Die Platte ist voll: Für %s ist kein Platz.</translation>
    </message>
    <message>
        <source>The dump of the sample broke off or came damaged.</source>
        <translation>Der Dump des Samples brach ab oder kam beschädigt an.</translation>
    </message>
    <message>
        <source>The exclusive channel</source>
        <translation>Der Exclusive-Kanal</translation>
    </message>
    <message>
        <source>The exclusive channel, as the sampler&apos;s own MIDI page shows it</source>
        <translation>Der Exclusive-Kanal, wie ihn die MIDI-Seite des Samplers zeigt</translation>
    </message>
    <message>
        <source>The export folder is the spool itself. Choose another one.</source>
        <translation>Der Zielordner ist der Spool selbst. Wählen Sie einen anderen.</translation>
    </message>
    <message>
        <source>The far end of the TCP bridge does not take the message.</source>
        <translation>Die Gegenstelle der TCP-Bridge nimmt die Meldung nicht an.</translation>
    </message>
    <message>
        <source>The file [%s] has %llu sample words. An upload takes 1 to %u of them, and the sampler as many as it has memory for.</source>
        <translation>Die Datei [%s] hat %llu Sample-Wörter. Gesendet werden 1 bis %u davon, und der Sampler nimmt so viele, wie er Speicher hat.</translation>
    </message>
    <message>
        <source>The file is shorter than 536 bytes.</source>
        <translation>Die Datei ist kürzer als 536 Bytes.</translation>
    </message>
    <message>
        <source>The file plays</source>
        <translation>Die Datei spielt</translation>
    </message>
    <message>
        <source>The folder does not tell %s from another sample whose name differs by case alone.</source>
        <translation>Der Ordner unterscheidet %s nicht von einem anderen Sample, dessen Name nur in Groß- und Kleinschreibung anders ist.</translation>
    </message>
    <message>
        <source>The folder of your samplers and, in its folder sample, of your samples</source>
        <translation>Der Ordner Ihrer Sampler und, in seinem Ordner sample, Ihrer Samples</translation>
    </message>
    <message>
        <source>The folder of your samplers is %s</source>
        <translation>Der Ordner Ihrer Sampler ist %s</translation>
    </message>
    <message>
        <source>The head of the sample&apos;s dump broke off.</source>
        <translation>Der Kopf des Sample-Dumps brach ab.</translation>
    </message>
    <message>
        <source>The keygroups of the program</source>
        <translation>Die Keygroups des Programms</translation>
    </message>
    <message>
        <source>The keys of the chosen keygroup</source>
        <translation>Die Tasten der gewählten Keygroup</translation>
    </message>
    <message>
        <source>The log was not saved.</source>
        <translation>Das Log wurde nicht gesichert.</translation>
    </message>
    <message>
        <source>The model of the program is missing.</source>
        <translation>Das Modell des Programms fehlt.</translation>
    </message>
    <message>
        <source>The model of the sampler</source>
        <translation>Das Modell des Samplers</translation>
    </message>
    <message>
        <source>The monitor is off</source>
        <translation>Der Monitor ist aus</translation>
    </message>
    <message>
        <source>The monitor is off.</source>
        <translation>Der Monitor ist aus.</translation>
    </message>
    <message>
        <source>The monitor is running</source>
        <translation>Der Monitor läuft</translation>
    </message>
    <message>
        <source>The multis in the sampler&apos;s memory</source>
        <translation>Die Multis im Speicher des Samplers</translation>
    </message>
    <message>
        <source>The name for Rename Program File</source>
        <translation>Der Name für Programmdatei umbenennen</translation>
    </message>
    <message>
        <source>The name for Rename this Program</source>
        <translation>Der Name für Rename this Program</translation>
    </message>
    <message>
        <source>The next keygroup is number %d, and this is %d.</source>
        <translation>Die nächste Keygroup hat die Nummer %d, und diese hat %d.</translation>
    </message>
    <message>
        <source>The next zone is number %d, and this is %d.</source>
        <translation>Die nächste Zone hat die Nummer %d, und diese hat %d.</translation>
    </message>
    <message>
        <source>The note that is played; 60 is middle C</source>
        <translation>Die gespielte Note; 60 ist das mittlere C</translation>
    </message>
    <message>
        <source>The picture could not be saved as %s. Is there room, and may files be made there?</source>
        <translation>Das Bild ließ sich nicht als %s sichern. Ist Platz da, und darf dort eine Datei entstehen?</translation>
    </message>
    <message>
        <source>The picture is on the clipboard.</source>
        <translation>Das Bild ist in der Zwischenablage.</translation>
    </message>
    <message>
        <source>The picture stands still. &quot;View LCD-Display&quot; in the main window goes on.</source>
        <translation>Das Bild steht still. &quot;View LCD-Display&quot; im Hauptfenster lässt es weiterlaufen.</translation>
    </message>
    <message>
        <source>The picture was saved as %s.</source>
        <translation>Das Bild wurde als %s gesichert.</translation>
    </message>
    <message>
        <source>The player is using %s; stop it first.</source>
        <translation>Der Player benutzt %s; halten Sie ihn zuerst an.</translation>
    </message>
    <message>
        <source>The port on which the sampler answers</source>
        <translation>Der Port, auf dem der Sampler antwortet</translation>
    </message>
    <message>
        <source>The port to which the sampler listens</source>
        <translation>Der Port, auf den der Sampler hört</translation>
    </message>
    <message>
        <source>The port whose messages the monitor shows</source>
        <translation>Der Port, dessen Meldungen der Monitor zeigt</translation>
    </message>
    <message>
        <source>The program [%s] cannot be sent: a message to this sampler counts to %d, and it is program %d with %d keygroups.</source>
        <translation>Das Programm [%s] lässt sich nicht senden: Eine Meldung an diesen Sampler zählt bis %d, und es ist Programm %d mit %d Keygroups.</translation>
    </message>
    <message>
        <source>The program [%s] was not saved, and the sampler has it as it was: %s</source>
        <translation>Das Programm [%s] wurde nicht gesichert, und der Sampler hat es, wie es war: %s</translation>
    </message>
    <message>
        <source>The program has its new name, but not all of its keygroups.</source>
        <translation>Das Programm hat seinen neuen Namen, aber nicht alle seine Keygroups.</translation>
    </message>
    <message>
        <source>The program is gone from the sampler.</source>
        <translation>Das Programm ist nicht mehr auf dem Sampler.</translation>
    </message>
    <message>
        <source>The program is not in the sampler&apos;s list. Read the list again.</source>
        <translation>Das Programm steht nicht in der Liste des Samplers. Lesen Sie die Liste noch einmal.</translation>
    </message>
    <message>
        <source>The program may be gone from the sampler.</source>
        <translation>Das Programm ist vielleicht nicht mehr auf dem Sampler.</translation>
    </message>
    <message>
        <source>The program on the sampler keeps %s that this one does not have.</source>
        <translation>Das Programm auf dem Sampler behält %s, die dieses hier nicht hat.</translation>
    </message>
    <message>
        <source>The program on the sampler may hold only a part of the changes.</source>
        <translation>Das Programm auf dem Sampler enthält vielleicht nur einen Teil der Änderungen.</translation>
    </message>
    <message>
        <source>The programs in the sampler&apos;s memory</source>
        <translation>Die Programme im Speicher des Samplers</translation>
    </message>
    <message>
        <source>The programs of this computer</source>
        <translation>Die Programme dieses Computers</translation>
    </message>
    <message>
        <source>The programs were read anew, and what was edited before is known no more.</source>
        <translation>Die Programme wurden neu gelesen; was vorher geändert war, ist nicht mehr bekannt.</translation>
    </message>
    <message>
        <source>The rate asked for is none.</source>
        <translation>Die verlangte Rate ist keine.</translation>
    </message>
    <message>
        <source>The result would be larger than a WAV file, or this computer&apos;s memory, can hold.</source>
        <translation>Das Ergebnis wäre größer, als eine WAV-Datei oder der Speicher dieses Computers fasst.</translation>
    </message>
    <message>
        <source>The sample is called %s already.</source>
        <translation>Das Sample heißt schon %s.</translation>
    </message>
    <message>
        <source>The sample of the chosen keyzone is there, or it names none.</source>
        <translation>Das Sample der gewählten Keyzone ist da, oder sie nennt keines.</translation>
    </message>
    <message>
        <source>The sample that the keyzone plays</source>
        <translation>Das Sample, das die Keyzone spielt</translation>
    </message>
    <message>
        <source>The sampler added %s without their tuning, filter and filter envelope, which take saving once more.</source>
        <translation>Der Sampler hat %s hinzugefügt, ohne Stimmung, Filter und Filter-Hüllkurve; dafür müssen Sie noch einmal sichern.</translation>
    </message>
    <message>
        <source>The sampler added no keygroup. %s</source>
        <translation>Der Sampler hat keine Keygroup hinzugefügt. %s</translation>
    </message>
    <message>
        <source>The sampler could not be told, and may wait for the rest until it is switched off and on.</source>
        <translation>Dem Sampler ließ es sich nicht sagen; vielleicht wartet er auf den Rest, bis er aus- und eingeschaltet wird.</translation>
    </message>
    <message>
        <source>The sampler did not answer as it should. %s</source>
        <translation>Der Sampler hat nicht geantwortet, wie er sollte. %s</translation>
    </message>
    <message>
        <source>The sampler did not do it: %s is still in its list.</source>
        <translation>Der Sampler hat es nicht getan: %s steht noch in seiner Liste.</translation>
    </message>
    <message>
        <source>The sampler did not do what was asked. %s</source>
        <translation>Der Sampler hat nicht getan, was verlangt war. %s</translation>
    </message>
    <message>
        <source>The sampler did not do what was asked.</source>
        <translation>Der Sampler hat nicht getan, was verlangt war.</translation>
    </message>
    <message>
        <source>The sampler did not take %d of %s. Its memory may be full.</source>
        <translation>Der Sampler hat %d von %s nicht angenommen. Vielleicht ist sein Speicher voll.</translation>
    </message>
    <message>
        <source>The sampler does not list %s, so it did not keep it.</source>
        <translation>Der Sampler nennt %s nicht in seiner Liste, hat es also nicht behalten.</translation>
    </message>
    <message>
        <source>The sampler does not send its screen. It is asked again and again.</source>
        <translation>Der Sampler sendet seine Anzeige nicht. Er wird immer wieder gefragt.</translation>
    </message>
    <message>
        <source>The sampler has %d keygroups of it and this computer %d; the others will be gone. </source>
        <translation>Der Sampler hat %d Keygroups davon und dieser Computer %d; die anderen gehen verloren. </translation>
    </message>
    <message>
        <source>The sampler has no program of that name.</source>
        <translation>Der Sampler hat kein Programm dieses Namens.</translation>
    </message>
    <message>
        <source>The sampler has the sample [%s] in the place that [%s] would go to. Overwrite it?</source>
        <translation>Der Sampler hat das Sample [%s] an der Stelle, an die [%s] käme. Überschreiben?</translation>
    </message>
    <message>
        <source>The sampler holds %u words of [%s], and %u were sent. It did not take the whole dump: upload the sample again.</source>
        <translation>Der Sampler enthält %u Wörter von [%s], und gesendet wurden %u. Er hat nicht den ganzen Dump angenommen: Senden Sie das Sample noch einmal.</translation>
    </message>
    <message>
        <source>The sampler holds no program of that name, and this model&apos;s programs are only updated. Nothing was changed on the sampler.</source>
        <translation>Der Sampler enthält kein Programm dieses Namens, und die Programme dieses Modells werden nur geändert. Auf dem Sampler wurde nichts geändert.</translation>
    </message>
    <message>
        <source>The sampler holds no programs</source>
        <translation>Der Sampler enthält keine Programme</translation>
    </message>
    <message>
        <source>The sampler is busy. Its screen comes back by itself.</source>
        <translation>Der Sampler ist beschäftigt. Seine Anzeige kommt von selbst zurück.</translation>
    </message>
    <message>
        <source>The sampler is not connected.</source>
        <translation>Der Sampler ist nicht angeschlossen.</translation>
    </message>
    <message>
        <source>The sampler refused %s.</source>
        <translation>Der Sampler hat %s abgelehnt.</translation>
    </message>
    <message>
        <source>The sampler refused. The program is as it was.</source>
        <translation>Der Sampler hat abgelehnt. Das Programm ist, wie es war.</translation>
    </message>
    <message>
        <source>The sampler refused.</source>
        <translation>Der Sampler hat abgelehnt.</translation>
    </message>
    <message>
        <source>The sampler was told to drop the transfer.</source>
        <translation>Dem Sampler wurde gesagt, die Übertragung zu verwerfen.</translation>
    </message>
    <message>
        <source>The sampler&apos;s header of [%s] came damaged: its checksum is wrong. Write the name into it nevertheless?</source>
        <translation>Der Kopf des Samplers von [%s] kam beschädigt an: Seine Prüfsumme ist falsch. Trotzdem den Namen hineinschreiben?</translation>
    </message>
    <message>
        <source>The sampler&apos;s list is full: no sample has the number %d.</source>
        <translation>Die Liste des Samplers ist voll: Kein Sample hat die Nummer %d.</translation>
    </message>
    <message>
        <source>The sampler&apos;s list was not read. The computer&apos;s list is up to date.</source>
        <translation>Die Liste des Samplers wurde nicht gelesen. Die Liste des Computers ist auf dem neuesten Stand.</translation>
    </message>
    <message>
        <source>The sampler&apos;s multis were not read.</source>
        <translation>Die Multis des Samplers wurden nicht gelesen.</translation>
    </message>
    <message>
        <source>The sampler&apos;s own name; Update stores it in the sampler</source>
        <translation>Der eigene Name des Samplers; Update sichert ihn im Sampler</translation>
    </message>
    <message>
        <source>The samplers found on the USB</source>
        <translation>Die am USB gefundenen Sampler</translation>
    </message>
    <message>
        <source>The samplers you have set up; choose one and load it</source>
        <translation>Die Sampler, die Sie eingerichtet haben; wählen Sie einen und laden Sie ihn</translation>
    </message>
    <message>
        <source>The screen of %s cannot be seen from here.</source>
        <translation>Die Anzeige von %s ist von hier aus nicht zu sehen.</translation>
    </message>
    <message>
        <source>The section [program] comes a second time.</source>
        <translation>Der Abschnitt [program] kommt ein zweites Mal.</translation>
    </message>
    <message>
        <source>The section [program] is missing.</source>
        <translation>Der Abschnitt [program] fehlt.</translation>
    </message>
    <message>
        <source>The song has been played to its end.</source>
        <translation>Das Stück wurde bis zum Ende gespielt.</translation>
    </message>
    <message>
        <source>The song has ended. %s</source>
        <translation>Das Stück ist zu Ende. %s</translation>
    </message>
    <message>
        <source>The spool holds no file called &apos;%s&apos;. Import it in the sample manager, or choose another sample for the keyzone.</source>
        <translation>Der Spool enthält keine Datei &apos;%s&apos;. Importieren Sie sie in der Sample-Verwaltung, oder wählen Sie ein anderes Sample für die Keyzone.</translation>
    </message>
    <message>
        <source>The spool was cleared.</source>
        <translation>Der Spool wurde geleert.</translation>
    </message>
    <message>
        <source>The spool was left as it is.</source>
        <translation>Der Spool blieb, wie er ist.</translation>
    </message>
    <message>
        <source>The upload broke off</source>
        <translation>Das Senden brach ab</translation>
    </message>
    <message>
        <source>The upload was stopped</source>
        <translation>Das Senden wurde angehalten</translation>
    </message>
    <message>
        <source>The velocity zones of the keygroup</source>
        <translation>Die Anschlagzonen der Keygroup</translation>
    </message>
    <message>
        <source>The version of its system</source>
        <translation>Die Version seines Systems</translation>
    </message>
    <message>
        <source>The wheel was turned.</source>
        <translation>Das Rad wurde gedreht.</translation>
    </message>
    <message>
        <source>The words of [%s] are sent, but the sampler %s about its sample %d, so the name and the pitch were not written. If the sample is not in its list, its memory is full, blocks were lost on the way, or it does not listen: uploads go to exclusive channel %d, and in omni mode it hears them all.</source>
        <translation>Die Wörter von [%s] sind gesendet, aber der Sampler %s über sein Sample %d, darum wurden Name und Tonhöhe nicht geschrieben. Steht das Sample nicht in seiner Liste, ist sein Speicher voll, gingen Blöcke unterwegs verloren, oder er hört nicht zu: Gesendet wird auf dem Exclusive-Kanal %d, und im Omni-Modus hört er alle.</translation>
    </message>
    <message>
        <source>There is a file called [%s] again, so nothing was put back.</source>
        <translation>Es gibt wieder eine Datei [%s], darum wurde nichts zurückgebracht.</translation>
    </message>
    <message>
        <source>There is a sampler called &apos;%s&apos; already. Please choose another name.</source>
        <translation>Es gibt schon einen Sampler &apos;%s&apos;. Bitte wählen Sie einen anderen Namen.</translation>
    </message>
    <message>
        <source>There is no edit to undo.</source>
        <translation>Es gibt keine Änderung, die sich zurücknehmen ließe.</translation>
    </message>
    <message>
        <source>There is no memory for what the sampler holds.</source>
        <translation>Für das, was der Sampler enthält, ist kein Speicher da.</translation>
    </message>
    <message>
        <source>There is no memory to ask.</source>
        <translation>Zum Fragen ist kein Speicher da.</translation>
    </message>
    <message>
        <source>There is no picture of the screen now.</source>
        <translation>Jetzt gibt es kein Bild der Anzeige.</translation>
    </message>
    <message>
        <source>There is no sampler called &apos;%s&apos;.</source>
        <translation>Es gibt keinen Sampler &apos;%s&apos;.</translation>
    </message>
    <message>
        <source>There is no such keygroup.</source>
        <translation>Diese Keygroup gibt es nicht.</translation>
    </message>
    <message>
        <source>There is no such program.</source>
        <translation>Dieses Programm gibt es nicht.</translation>
    </message>
    <message>
        <source>There is nothing to put back.</source>
        <translation>Es gibt nichts zurückzubringen.</translation>
    </message>
    <message>
        <source>There was no answer within %d seconds. Is the far end switched on, and on this network?</source>
        <translation>Innerhalb von %d Sekunden kam keine Antwort. Ist die Gegenstelle eingeschaltet und in diesem Netz?</translation>
    </message>
    <message>
        <source>This WAV file begins with a chunk &quot;%s&quot;, and only one that begins with &quot;fmt &quot; can be read. Save it anew as a plain WAV file.</source>
        <translation>Diese WAV-Datei beginnt mit einem Chunk &quot;%s&quot;, und nur eine, die mit &quot;fmt &quot; beginnt, lässt sich lesen. Sichern Sie sie neu als einfache WAV-Datei.</translation>
    </message>
    <message>
        <source>This WAV file ends in its header: it has %llu bytes.</source>
        <translation>Diese WAV-Datei endet in ihrem Kopf: Sie hat %llu Bytes.</translation>
    </message>
    <message>
        <source>This WAV file has no sound in it: its chunk &quot;data&quot; is missing. It may have been cut short.</source>
        <translation>In dieser WAV-Datei ist kein Klang: Ihr Chunk &quot;data&quot; fehlt. Vielleicht wurde sie abgeschnitten.</translation>
    </message>
    <message>
        <source>This WAV file holds sound of a kind that this program cannot read. Save it as a plain WAV file first.</source>
        <translation>Diese WAV-Datei enthält Klang einer Art, die dieses Programm nicht lesen kann. Sichern Sie sie zuerst als einfache WAV-Datei.</translation>
    </message>
    <message>
        <source>This WAV file is damaged: %s.</source>
        <translation>Diese WAV-Datei ist beschädigt: %s.</translation>
    </message>
    <message>
        <source>This brand cannot be asked who it is. Choose the model of the sampler.</source>
        <translation>Diese Marke lässt sich nicht fragen, wer sie ist. Wählen Sie das Modell des Samplers.</translation>
    </message>
    <message>
        <source>This file is empty.</source>
        <translation>Diese Datei ist leer.</translation>
    </message>
    <message>
        <source>This is %s. %s</source>
        <translation>Das ist %s. %s</translation>
    </message>
    <message>
        <source>This is neither a section nor a parameter with its value.</source>
        <translation>Das ist weder ein Abschnitt noch ein Parameter mit seinem Wert.</translation>
    </message>
    <message>
        <source>This is no WAV file: it does not begin with &quot;RIFF&quot; and &quot;WAVE&quot;. %s</source>
        <translation>Das ist keine WAV-Datei: Sie beginnt nicht mit &quot;RIFF&quot; und &quot;WAVE&quot;. %s</translation>
    </message>
    <message>
        <source>This keyzone names no sample.</source>
        <translation>Diese Keyzone nennt kein Sample.</translation>
    </message>
    <message>
        <source>This model has no values of the program to edit.</source>
        <translation>Dieses Modell hat keine Werte des Programms, die sich ändern ließen.</translation>
    </message>
    <message>
        <source>This program is on the sampler: Life Update sends it, Download this Program keeps it on this computer.</source>
        <translation>Dieses Programm ist auf dem Sampler: Life Update sendet es, Download this Program sichert es auf diesem Computer.</translation>
    </message>
    <message>
        <source>This program is on this computer: Save Changes writes it to its file, Upload selected Prog sends it.</source>
        <translation>Dieses Programm ist auf diesem Computer: Save Changes schreibt es in seine Datei, Upload selected Prog sendet es.</translation>
    </message>
    <message>
        <source>This sampler shows its screen and takes no keys.</source>
        <translation>Dieser Sampler zeigt seine Anzeige und nimmt keine Tasten an.</translation>
    </message>
    <message>
        <source>This sampler takes a program only over one that it holds. Make a program called %s on its own panel, then try again.</source>
        <translation>Dieser Sampler nimmt ein Programm nur an Stelle eines, das er enthält. Legen Sie am Sampler ein Programm %s an, und versuchen Sie es dann noch einmal.</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>Tracks</source>
        <translation>Spuren</translation>
    </message>
    <message>
        <source>Try again</source>
        <translation>Noch einmal</translation>
    </message>
    <message>
        <source>USB &apos;%s&apos;</source>
        <translation>USB &apos;%s&apos;</translation>
    </message>
    <message>
        <source>USB cable</source>
        <translation>USB-Kabel</translation>
    </message>
    <message>
        <source>USB, not plugged in</source>
        <translation>USB, nicht angeschlossen</translation>
    </message>
    <message>
        <source>USB, plugged in</source>
        <translation>USB, angeschlossen</translation>
    </message>
    <message>
        <source>Undo Edit</source>
        <translation>Änderung zurücknehmen</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Zurücknehmen</translation>
    </message>
    <message>
        <source>Undone: %s</source>
        <translation>Zurückgenommen: %s</translation>
    </message>
    <message>
        <source>Unloaded &apos;%s&apos;.</source>
        <translation>&apos;%s&apos; weggelegt.</translation>
    </message>
    <message>
        <source>Unsent changes</source>
        <translation>Nicht gesendete Änderungen</translation>
    </message>
    <message>
        <source>Unsent</source>
        <translation>Nicht gesendet</translation>
    </message>
    <message>
        <source>Uploaded %s.</source>
        <translation>%s gesendet.</translation>
    </message>
    <message>
        <source>Velocity high</source>
        <translation>Höchste Anschlagstärke</translation>
    </message>
    <message>
        <source>Velocity low</source>
        <translation>Geringste Anschlagstärke</translation>
    </message>
    <message>
        <source>Verdict</source>
        <translation>Urteil</translation>
    </message>
    <message>
        <source>Volume</source>
        <translation>Lautstärke</translation>
    </message>
    <message>
        <source>Way to it</source>
        <translation>Weg zu ihm</translation>
    </message>
    <message>
        <source>What is shown</source>
        <translation>Was gezeigt wird</translation>
    </message>
    <message>
        <source>What the program and the sampler have done so far</source>
        <translation>Was Programm und Sampler bisher getan haben</translation>
    </message>
    <message>
        <source>What the sampler says it is</source>
        <translation>Was der Sampler nach eigener Auskunft ist</translation>
    </message>
    <message>
        <source>What this computer held before is unchanged.</source>
        <translation>Was dieser Computer vorher hatte, ist unverändert.</translation>
    </message>
    <message>
        <source>Where notes go; Basic settings choose it</source>
        <translation>Wohin Noten gehen; Basic settings bestimmt es</translation>
    </message>
    <message>
        <source>Where the monitor listens; Basic settings choose it</source>
        <translation>Worauf der Monitor hört; Basic settings bestimmt es</translation>
    </message>
    <message>
        <source>Which way the messages go now</source>
        <translation>Welchen Weg die Meldungen jetzt nehmen</translation>
    </message>
    <message>
        <source>Work with the chosen sampler</source>
        <translation>Mit dem gewählten Sampler arbeiten</translation>
    </message>
    <message>
        <source>Write the edited program of this computer to its file</source>
        <translation>Schreibt das geänderte Programm dieses Computers in seine Datei</translation>
    </message>
    <message>
        <source>Write the sounding notes of this track to the log</source>
        <translation>Schreibt die klingenden Noten dieser Spur ins Log</translation>
    </message>
    <message>
        <source>[%s] cannot be read any more.</source>
        <translation>[%s] lässt sich nicht mehr lesen.</translation>
    </message>
    <message>
        <source>[%s] did not say what it is. Is it switched on?</source>
        <translation>[%s] hat nicht gesagt, was er ist. Ist er eingeschaltet?</translation>
    </message>
    <message>
        <source>[%s] is not there any more. Refresh reads the spool again.</source>
        <translation>[%s] ist nicht mehr da. Refresh liest den Spool neu.</translation>
    </message>
    <message>
        <source>[%s] is too large for a program.</source>
        <translation>[%s] ist zu groß für ein Programm.</translation>
    </message>
    <message>
        <source>[%s], line %d: %s It was not loaded.</source>
        <translation>[%s], Zeile %d: %s Es wurde nicht geladen.</translation>
    </message>
    <message>
        <source>
And %d more, which the log names.</source>
        <translation>
Und %d weitere, die das Log nennt.</translation>
    </message>
    <message>
        <source>
Not on the sampler: %s</source>
        <translation>
Nicht auf dem Sampler: %s</translation>
    </message>
    <message>
        <source>
The log names the parameters that cannot go, and those that no AKP file tells and that are sent as 0.</source>
        <translation>
Das Log nennt die Parameter, die nicht mitkönnen, und die, die keine AKP-Datei angibt und die als 0 gesendet werden.</translation>
    </message>
    <message>
        <source>a BW64 file (a WAV file for more than 4 GB)</source>
        <translation>eine BW64-Datei (eine WAV-Datei für mehr als 4 GB)</translation>
    </message>
    <message>
        <source>a Core Audio file (CAF)</source>
        <translation>eine Core-Audio-Datei (CAF)</translation>
    </message>
    <message>
        <source>a FLAC file</source>
        <translation>eine FLAC-Datei</translation>
    </message>
    <message>
        <source>a MIDI file</source>
        <translation>eine MIDI-Datei</translation>
    </message>
    <message>
        <source>a RAR archive</source>
        <translation>ein RAR-Archiv</translation>
    </message>
    <message>
        <source>a SoundFont</source>
        <translation>ein SoundFont</translation>
    </message>
    <message>
        <source>a Sun or NeXT sound file (AU)</source>
        <translation>eine Klangdatei von Sun oder NeXT (AU)</translation>
    </message>
    <message>
        <source>a WAV file in the byte order of other computers (RIFX)</source>
        <translation>eine WAV-Datei in der Bytefolge anderer Computer (RIFX)</translation>
    </message>
    <message>
        <source>a WavPack file</source>
        <translation>eine WavPack-Datei</translation>
    </message>
    <message>
        <source>a Wave64 file</source>
        <translation>eine Wave64-Datei</translation>
    </message>
    <message>
        <source>a ZIP archive</source>
        <translation>ein ZIP-Archiv</translation>
    </message>
    <message>
        <source>a video (AVI)</source>
        <translation>ein Video (AVI)</translation>
    </message>
    <message>
        <source>an AIFF file</source>
        <translation>eine AIFF-Datei</translation>
    </message>
    <message>
        <source>an AKAI program file (AKP)</source>
        <translation>eine AKAI-Programmdatei (AKP)</translation>
    </message>
    <message>
        <source>an MP3 file</source>
        <translation>eine MP3-Datei</translation>
    </message>
    <message>
        <source>an MP4 or M4A file</source>
        <translation>eine MP4- oder M4A-Datei</translation>
    </message>
    <message>
        <source>an Ogg file</source>
        <translation>eine Ogg-Datei</translation>
    </message>
    <message>
        <source>an RF64 file (a WAV file for more than 4 GB)</source>
        <translation>eine RF64-Datei (eine WAV-Datei für mehr als 4 GB)</translation>
    </message>
    <message>
        <source>broke off telling</source>
        <translation>brach seine Auskunft ab</translation>
    </message>
    <message>
        <source>computer</source>
        <translation>Computer</translation>
    </message>
    <message>
        <source>details for finding faults</source>
        <translation>Einzelheiten für die Fehlersuche</translation>
    </message>
    <message>
        <source>does not answer</source>
        <translation>antwortet nicht</translation>
    </message>
    <message>
        <source>failures</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>its header gives a frame no bytes</source>
        <translation>Ihr Kopf gibt einem Frame keine Bytes</translation>
    </message>
    <message>
        <source>its header tells no channels</source>
        <translation>Ihr Kopf nennt keine Kanäle</translation>
    </message>
    <message>
        <source>its header tells no sampling rate</source>
        <translation>Ihr Kopf nennt keine Abtastrate</translation>
    </message>
    <message>
        <source>no MIDI port</source>
        <translation>kein MIDI-Port</translation>
    </message>
    <message>
        <source>no keygroup chosen</source>
        <translation>keine Keygroup gewählt</translation>
    </message>
    <message>
        <source>no sample</source>
        <translation>kein Sample</translation>
    </message>
    <message>
        <source>none</source>
        <translation>keine</translation>
    </message>
    <message>
        <source>not asked yet</source>
        <translation>noch nicht gefragt</translation>
    </message>
    <message>
        <source>not read yet</source>
        <translation>noch nicht gelesen</translation>
    </message>
    <message>
        <source>not read · asked %s</source>
        <translation>nicht gelesen · gefragt %s</translation>
    </message>
    <message>
        <source>on the USB</source>
        <translation>am USB</translation>
    </message>
    <message>
        <source>over MIDI</source>
        <translation>über MIDI</translation>
    </message>
    <message>
        <source>sampler</source>
        <translation>Sampler</translation>
    </message>
    <message>
        <source>size of the screen</source>
        <translation>Größe der Anzeige</translation>
    </message>
    <message>
        <source>the log</source>
        <translation>das Log</translation>
    </message>
    <message>
        <source>the sampler does not answer.</source>
        <translation>der Sampler antwortet nicht.</translation>
    </message>
    <message>
        <source>this model</source>
        <translation>dieses Modell</translation>
    </message>
    <message>
        <source>through &apos;%s&apos; and &apos;%s&apos;</source>
        <translation>durch &apos;%s&apos; und &apos;%s&apos;</translation>
    </message>
    <message>
        <source>through &apos;%s&apos;</source>
        <translation>durch &apos;%s&apos;</translation>
    </message>
    <message>
        <source>through the TCP bridge at %s:%d</source>
        <translation>durch die TCP-Bridge bei %s:%d</translation>
    </message>
    <message>
        <source>warnings</source>
        <translation>Warnungen</translation>
    </message>
    <message>
        <source>what the sampler sent of it broke off.</source>
        <translation>was der Sampler davon gesendet hat, brach ab.</translation>
    </message>
    <message>
        <source>what was done</source>
        <translation>was getan wurde</translation>
    </message>
    <message>
        <source> and %d more</source>
        <translation> und %d weitere</translation>
    </message>
    <message>
        <source>%.1f kB/s</source>
        <translation>%.1f kB/s</translation>
    </message>
    <message>
        <source>%d bytes</source>
        <translation>%d Bytes</translation>
    </message>
    <message>
        <source>%d done</source>
        <translation>%d fertig</translation>
    </message>
    <message>
        <source>%d failed</source>
        <translation>%d misslungen</translation>
    </message>
    <message>
        <source>%d not tried</source>
        <translation>%d nicht versucht</translation>
    </message>
    <message>
        <source>%d of %d files would not arrive as they are. The first: %s
Convert them now, and upload what they become?</source>
        <translation>%d von %d Dateien kämen so nicht an. Die erste: %s
Jetzt konvertieren und senden, was daraus wird?</translation>
    </message>
    <message>
        <source>%d of %d programs and samples done</source>
        <translation>%d von %d Programmen und Samples fertig</translation>
    </message>
    <message>
        <source>%d of %d programs and samples were uploaded.</source>
        <translation>%d von %d Programmen und Samples wurden gesendet.</translation>
    </message>
    <message>
        <source>%d of %d programs done</source>
        <translation>%d von %d Programmen fertig</translation>
    </message>
    <message>
        <source>%d of %d programs were deleted.</source>
        <translation>%d von %d Programmen wurden gelöscht.</translation>
    </message>
    <message>
        <source>%d of %d programs were downloaded.</source>
        <translation>%d von %d Programmen wurden geholt.</translation>
    </message>
    <message>
        <source>%d of %d samples done</source>
        <translation>%d von %d Samples fertig</translation>
    </message>
    <message>
        <source>%d of %d samples were deleted.</source>
        <translation>%d von %d Samples wurden gelöscht.</translation>
    </message>
    <message>
        <source>%d of %d samples were downloaded.</source>
        <translation>%d von %d Samples wurden geholt.</translation>
    </message>
    <message>
        <source>%d skipped</source>
        <translation>%d ausgelassen</translation>
    </message>
    <message>
        <source>%d/%d programs and samples uploaded!</source>
        <translation>%d/%d Programme und Samples gesendet!</translation>
    </message>
    <message>
        <source>%d/%d programs deleted!</source>
        <translation>%d/%d Programme gelöscht!</translation>
    </message>
    <message>
        <source>%d/%d programs downloaded!</source>
        <translation>%d/%d Programme geholt!</translation>
    </message>
    <message>
        <source>%d/%d samples deleted!</source>
        <translation>%d/%d Samples gelöscht!</translation>
    </message>
    <message>
        <source>%d/%d samples uploaded!</source>
        <translation>%d/%d Samples gesendet!</translation>
    </message>
    <message>
        <source>%ld h %ld min</source>
        <translation>%ld h %ld min</translation>
    </message>
    <message>
        <source>%ld min %ld s</source>
        <translation>%ld min %ld s</translation>
    </message>
    <message>
        <source>%ld s</source>
        <translation>%ld s</translation>
    </message>
    <message>
        <source>%s, at %d %%</source>
        <translation>%s, bei %d %%</translation>
    </message>
    <message>
        <source>&apos;%s&apos; is not on this computer any more.</source>
        <translation>&apos;%s&apos; ist nicht mehr auf diesem Computer.</translation>
    </message>
    <message>
        <source>Choose a sample on the sampler first.</source>
        <translation>Wählen Sie erst ein Sample auf dem Sampler.</translation>
    </message>
    <message>
        <source>Choose a sample on this computer first.</source>
        <translation>Zuerst ein Sample auf diesem Computer wählen.</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Copy as text</source>
        <translation>Als Text kopieren</translation>
    </message>
    <message>
        <source>Counts</source>
        <translation>Anzahlen</translation>
    </message>
    <message>
        <source>Delete %d programs from the sampler&apos;s memory?</source>
        <translation>%d Programme aus dem Speicher des Samplers löschen?</translation>
    </message>
    <message>
        <source>Delete %d samples from the sampler&apos;s memory?</source>
        <translation>%d Samples aus dem Speicher des Samplers löschen?</translation>
    </message>
    <message>
        <source>Download these %1 samples to this computer</source>
        <translation>Diese %1 Samples auf diesen Computer holen</translation>
    </message>
    <message>
        <source>Download this sample to this computer</source>
        <translation>Dieses Sample auf diesen Computer holen</translation>
    </message>
    <message>
        <source>Item</source>
        <translation>Stück</translation>
    </message>
    <message>
        <source>Items of the work</source>
        <translation>Stücke der Arbeit</translation>
    </message>
    <message>
        <source>Items</source>
        <translation>Stücke</translation>
    </message>
    <message>
        <source>Let this one come to its end, and begin no other</source>
        <translation>Lässt dieses zu Ende gehen und beginnt kein weiteres</translation>
    </message>
    <message>
        <source>Not asked for: </source>
        <translation>Nicht angefordert: </translation>
    </message>
    <message>
        <source>Not deleted: </source>
        <translation>Nicht gelöscht: </translation>
    </message>
    <message>
        <source>Not downloaded: </source>
        <translation>Nicht geholt: </translation>
    </message>
    <message>
        <source>Not sent: </source>
        <translation>Nicht begonnen: </translation>
    </message>
    <message>
        <source>Not touched: </source>
        <translation>Nicht angerührt: </translation>
    </message>
    <message>
        <source>Not uploaded: </source>
        <translation>Nicht gesendet: </translation>
    </message>
    <message>
        <source>Nothing was deleted.</source>
        <translation>Nichts wurde gelöscht.</translation>
    </message>
    <message>
        <source>Nothing was uploaded.</source>
        <translation>Nichts wurde gesendet.</translation>
    </message>
    <message>
        <source>Put %d samples back.</source>
        <translation>%d Samples zurückgeholt.</translation>
    </message>
    <message>
        <source>Put the verdict and its list on the clipboard</source>
        <translation>Legt das Urteil mit seiner Liste in die Zwischenablage</translation>
    </message>
    <message>
        <source>Rate</source>
        <translation>Rate</translation>
    </message>
    <message>
        <source>Reason</source>
        <translation>Grund</translation>
    </message>
    <message>
        <source>Stop after this one</source>
        <translation>Nach diesem anhalten</translation>
    </message>
    <message>
        <source>The files of what is deleted lie in the folder &quot;deleted&quot;.</source>
        <translation>Die Dateien des Gelöschten liegen im Ordner &quot;deleted&quot;.</translation>
    </message>
    <message>
        <source>The list was copied as text.</source>
        <translation>Die Liste wurde als Text kopiert.</translation>
    </message>
    <message>
        <source>The same trouble came twice in a row, so the rest was not tried.</source>
        <translation>Derselbe Fehler kam zweimal hintereinander; darum wurde der Rest nicht versucht.</translation>
    </message>
    <message>
        <source>The same work once more, on those that were not done</source>
        <translation>Dieselbe Arbeit noch einmal, mit denen, die nicht fertig wurden</translation>
    </message>
    <message>
        <source>The sampler stopped answering at %s, in the middle of &apos;%s&apos;.</source>
        <translation>Der Sampler antwortet seit %s nicht mehr, mitten in &apos;%s&apos;.</translation>
    </message>
    <message>
        <source>The whole</source>
        <translation>Das Ganze</translation>
    </message>
    <message>
        <source>The work ends after this one.</source>
        <translation>Die Arbeit endet nach diesem.</translation>
    </message>
    <message>
        <source>This is for one program, and several are chosen.</source>
        <translation>Dies ist für ein einzelnes Programm, und mehrere sind gewählt.</translation>
    </message>
    <message>
        <source>This is for one sample, and several are chosen.</source>
        <translation>Dies ist für ein einzelnes Sample, und mehrere sind gewählt.</translation>
    </message>
    <message>
        <source>Time left for all</source>
        <translation>Restzeit für alle</translation>
    </message>
    <message>
        <source>Try the failed again</source>
        <translation>Die misslungenen noch einmal</translation>
    </message>
    <message>
        <source>Try the other %d again</source>
        <translation>Die anderen %d noch einmal</translation>
    </message>
    <message>
        <source>Upload the other samples? (%d of %d)</source>
        <translation>Die anderen Samples senden? (%d von %d)</translation>
    </message>
    <message>
        <source>Upload these %1 samples to the sampler</source>
        <translation>Diese %1 Samples an den Sampler senden</translation>
    </message>
    <message>
        <source>Upload this sample to the sampler</source>
        <translation>Dieses Sample an den Sampler senden</translation>
    </message>
    <message>
        <source>What Stop leaves</source>
        <translation>Was Stop übrig lässt</translation>
    </message>
    <message>
        <source>What became of each</source>
        <translation>Was aus jedem wurde</translation>
    </message>
    <message>
        <source>What happened</source>
        <translation>Was geschah</translation>
    </message>
    <message>
        <source>What has arrived stays. Nothing half sent is kept.</source>
        <translation>Was angekommen ist, bleibt. Halb Gesendetes wird nicht behalten.</translation>
    </message>
    <message>
        <source>What is deleted can be put back with Undo.</source>
        <translation>Was gelöscht ist, holt Undo zurück.</translation>
    </message>
    <message>
        <source>What is deleted stays deleted.</source>
        <translation>Was gelöscht ist, bleibt gelöscht.</translation>
    </message>
    <message>
        <source>What is done stays. Nothing half read is kept.</source>
        <translation>Was fertig ist, bleibt. Halb Gelesenes wird nicht behalten.</translation>
    </message>
    <message>
        <source>You stopped it after &apos;%s&apos;.</source>
        <translation>Sie haben es nach &apos;%s&apos; angehalten.</translation>
    </message>
    <message>
        <source>You stopped it in the middle of &apos;%s&apos;.</source>
        <translation>Sie haben es mitten in &apos;%s&apos; angehalten.</translation>
    </message>
    <message>
        <source>about %s left for all</source>
        <translation>noch etwa %s für alle</translation>
    </message>
    <message>
        <source>done</source>
        <translation>fertig</translation>
    </message>
    <message>
        <source>done, %s</source>
        <translation>fertig, %s</translation>
    </message>
    <message>
        <source>kept the one on this computer</source>
        <translation>das auf diesem Computer behalten</translation>
    </message>
    <message>
        <source>no answer</source>
        <translation>keine Antwort</translation>
    </message>
    <message>
        <source>not tried</source>
        <translation>nicht versucht</translation>
    </message>
    <message>
        <source>skipped</source>
        <translation>ausgelassen</translation>
    </message>
    <message>
        <source>skipped: %s</source>
        <translation>ausgelassen: %s</translation>
    </message>
    <message>
        <source>stopped</source>
        <translation>angehalten</translation>
    </message>
    <message>
        <source>the sampler did not send it</source>
        <translation>der Sampler hat es nicht gesendet</translation>
    </message>
    <message>
        <source>waits</source>
        <translation>wartet</translation>
    </message>
    <message>
        <source>waits, about %s</source>
        <translation>wartet, etwa %s</translation>
    </message>
    <message>
        <source>End this work at the next point where the sampler stays usable</source>
        <translation>Beendet diese Arbeit an der nächsten Stelle, an der der Sampler brauchbar bleibt</translation>
    </message>
    <message>
        <source>MIDI bytes came faster than they could be read; some are lost</source>
        <translation>MIDI-Bytes kamen schneller, als sie sich lesen ließen; einige sind verloren</translation>
    </message>
    <message>
        <source>The MIDI port is gone. Plug the interface in again, then choose it again</source>
        <translation>Der MIDI-Port ist weg. Schließen Sie die Schnittstelle wieder an, und wählen Sie ihn dann noch einmal</translation>
    </message>
    <message>
        <source>The MIDI port is in use by another program. Close that program and try again</source>
        <translation>Ein anderes Programm benutzt den MIDI-Port. Schließen Sie es, und versuchen Sie es noch einmal</translation>
    </message>
    <message>
        <source>The MIDI port is not open</source>
        <translation>Der MIDI-Port ist nicht offen</translation>
    </message>
    <message>
        <source>The address is no IPv4 address such as 192.168.0.10.</source>
        <translation>Die Adresse ist keine IPv4-Adresse wie 192.168.0.10.</translation>
    </message>
    <message>
        <source>The far end broke the connection off.</source>
        <translation>Die Gegenstelle hat die Verbindung abgebrochen.</translation>
    </message>
    <message>
        <source>The far end closed the connection.</source>
        <translation>Die Gegenstelle hat die Verbindung geschlossen.</translation>
    </message>
    <message>
        <source>The far end does not answer. Is it switched on, and on this network?</source>
        <translation>Die Gegenstelle antwortet nicht. Ist sie eingeschaltet und in diesem Netz?</translation>
    </message>
    <message>
        <source>The far end refuses the connection. Does the bridge run there, on this port?</source>
        <translation>Die Gegenstelle lehnt die Verbindung ab. Läuft dort die Bridge, auf diesem Port?</translation>
    </message>
    <message>
        <source>The program at the other end does not let others connect</source>
        <translation>Das Programm am anderen Ende lässt andere nicht verbinden</translation>
    </message>
    <message>
        <source>The program at the other end does not take its MIDI data</source>
        <translation>Das Programm am anderen Ende nimmt seine MIDI-Daten nicht ab</translation>
    </message>
    <message>
        <source>There is no network that leads to this address.</source>
        <translation>Kein Netz führt zu dieser Adresse.</translation>
    </message>
    <message>
        <source>There is no such MIDI port. Choose one in the settings</source>
        <translation>Diesen MIDI-Port gibt es nicht. Wählen Sie einen in den Einstellungen</translation>
    </message>
    <message>
        <source>You may not open the MIDI port. Add yourself to the group &quot;audio&quot;, log out and in again</source>
        <translation>Sie dürfen den MIDI-Port nicht öffnen. Treten Sie der Gruppe &quot;audio&quot; bei, und melden Sie sich ab und wieder an</translation>
    </message>
    <message>
        <source> Or press Fit to the Sampler.</source>
        <translation> Oder „An den Sampler anpassen“ drücken.</translation>
    </message>
    <message>
        <source>Becomes</source>
        <translation>Wird zu</translation>
    </message>
    <message>
        <source>Exact length</source>
        <translation>Genaue Länge</translation>
    </message>
    <message>
        <source>Fit to the Sampler</source>
        <translation>An den Sampler anpassen</translation>
    </message>
    <message>
        <source>Fitting samples...</source>
        <translation>Samples werden angepasst...</translation>
    </message>
    <message>
        <source>How many bytes of sound a second go over this connection, as measured</source>
        <translation>Wie viele Bytes Klang in der Sekunde über diese Verbindung gehen, wie gemessen</translation>
    </message>
    <message>
        <source>It cannot be converted here.</source>
        <translation>Es kann hier nicht umgewandelt werden.</translation>
    </message>
    <message>
        <source>Load a sampler first.</source>
        <translation>Zuerst einen Sampler laden.</translation>
    </message>
    <message>
        <source>Lost</source>
        <translation>Verloren</translation>
    </message>
    <message>
        <source>Make of the chosen samples what the loaded sampler takes: bits, channels and rate, no more than it needs</source>
        <translation>Aus den gewählten Samples machen, was der geladene Sampler nimmt: Bits, Kanäle und Rate, nicht mehr als nötig</translation>
    </message>
    <message>
        <source>Not measured yet
on this connection</source>
        <translation>Auf dieser Verbindung
noch nicht gemessen</translation>
    </message>
    <message>
        <source>Send each word once, and pitch, loop, play mode and tuning with them; otherwise the second half of a sample is silence</source>
        <translation>Jedes Wort einmal senden, und Tonhöhe, Loop, Spielart und Stimmung dazu; sonst ist die zweite Hälfte eines Samples Stille</translation>
    </message>
    <message>
        <source>The sample stays as it is.</source>
        <translation>Das Sample bleibt, wie es ist.</translation>
    </message>
    <message>
        <source>Upload</source>
        <translation>Senden</translation>
    </message>
    <message>
        <source>about %ld h %ld min</source>
        <translation>etwa %ld h %ld min</translation>
    </message>
    <message>
        <source>about %ld min %ld s</source>
        <translation>etwa %ld min %ld s</translation>
    </message>
    <message>
        <source>about %ld s</source>
        <translation>etwa %ld s</translation>
    </message>
    <message>
        <source>less than a second</source>
        <translation>weniger als eine Sekunde</translation>
    </message>
    <message>
        <source>the left channel (Right Channel is chosen)</source>
        <translation>der linke Kanal (Right Channel ist gewählt)</translation>
    </message>
    <message>
        <source>the lower %u bits (Convert to %u bit is chosen)</source>
        <translation>die unteren %u Bit (Convert to %u bit ist gewählt)</translation>
    </message>
    <message>
        <source>the right channel (Left Channel is chosen)</source>
        <translation>der rechte Kanal (Left Channel ist gewählt)</translation>
    </message>
    <message>
        <source>what differs between the channels (Mix Channels is chosen)</source>
        <translation>was die Kanäle unterscheidet (Mix Channels ist gewählt)</translation>
    </message>
    <message>
        <source>what is finer than 24 bits</source>
        <translation>was feiner als 24 Bit ist</translation>
    </message>
    <message>
        <source>6 is twice as loud, -6 half as loud</source>
        <translation>6 ist doppelt so laut, -6 halb so laut</translation>
    </message>
    <message>
        <source>Ask the sampler about the chosen sample</source>
        <translation>Fragt den Sampler nach dem gewählten Sample</translation>
    </message>
    <message>
        <source>Choose sound files and convert them into the spool</source>
        <translation>Wählt Klangdateien und konvertiert sie in den Spool</translation>
    </message>
    <message>
        <source>Copy every sample of the sampler to this computer</source>
        <translation>Kopiert jedes Sample des Samplers auf diesen Computer</translation>
    </message>
    <message>
        <source>Copy every sample of the spool to a folder of your choice</source>
        <translation>Kopiert jedes Sample des Spools in einen Ordner Ihrer Wahl</translation>
    </message>
    <message>
        <source>Copy the chosen sample from the sampler to this computer</source>
        <translation>Kopiert das gewählte Sample vom Sampler auf diesen Computer</translation>
    </message>
    <message>
        <source>Cut the chosen sample of this computer to what lies between start and end</source>
        <translation>Schneidet das gewählte Sample dieses Computers auf das zu, was zwischen Anfang und Ende liegt</translation>
    </message>
    <message>
        <source>Decibels</source>
        <translation>Dezibel</translation>
    </message>
    <message>
        <source>Delete every sample of the spool from this computer</source>
        <translation>Löscht jedes Sample des Spools von diesem Computer</translation>
    </message>
    <message>
        <source>Delete the chosen sample from this computer</source>
        <translation>Löscht das gewählte Sample von diesem Computer</translation>
    </message>
    <message>
        <source>Download all Samples</source>
        <translation>Alle Samples holen</translation>
    </message>
    <message>
        <source>Fade Seam</source>
        <translation>Naht blenden</translation>
    </message>
    <message>
        <source>For the S900/950</source>
        <translation>Für den S900/950</translation>
    </message>
    <message>
        <source>From a stereo file take the average of both channels</source>
        <translation>Nimmt von einer Stereodatei das Mittel beider Kanäle</translation>
    </message>
    <message>
        <source>From a stereo file take the left channel; put a mono file on the left</source>
        <translation>Nimmt von einer Stereodatei den linken Kanal; legt eine Monodatei nach links</translation>
    </message>
    <message>
        <source>From a stereo file take the right channel; put a mono file on the right</source>
        <translation>Nimmt von einer Stereodatei den rechten Kanal; legt eine Monodatei nach rechts</translation>
    </message>
    <message>
        <source>Give the chosen sample on the sampler the name in the field</source>
        <translation>Gibt dem gewählten Sample auf dem Sampler den Namen im Feld</translation>
    </message>
    <message>
        <source>Give the chosen sample on this computer the name in the field</source>
        <translation>Gibt dem gewählten Sample auf diesem Computer den Namen im Feld</translation>
    </message>
    <message>
        <source>How long the fade of the seam is</source>
        <translation>Wie lang die Überblendung der Naht ist</translation>
    </message>
    <message>
        <source>How many samples there are on this computer</source>
        <translation>Wie viele Samples auf diesem Computer sind</translation>
    </message>
    <message>
        <source>How many samples, and when they were read</source>
        <translation>Wie viele Samples, und wann sie gelesen wurden</translation>
    </message>
    <message>
        <source>Leave mono mono and stereo stereo</source>
        <translation>Lässt Mono mono und Stereo stereo</translation>
    </message>
    <message>
        <source>Leave the bits of a value as they are</source>
        <translation>Lässt die Bits eines Werts, wie sie sind</translation>
    </message>
    <message>
        <source>Leave the sampling rate as it is</source>
        <translation>Lässt die Abtastrate, wie sie ist</translation>
    </message>
    <message>
        <source>Length (s):</source>
        <translation>Länge (s):</translation>
    </message>
    <message>
        <source>Loop from start to end, which can be dragged in the picture</source>
        <translation>Setzt den Loop von Anfang bis Ende, die sich im Bild ziehen lassen</translation>
    </message>
    <message>
        <source>Loop here</source>
        <translation>Loop hier</translation>
    </message>
    <message>
        <source>Make every sample mono</source>
        <translation>Macht jedes Sample mono</translation>
    </message>
    <message>
        <source>Make every sample stereo</source>
        <translation>Macht jedes Sample stereo</translation>
    </message>
    <message>
        <source>Make the sample louder or softer by the decibels in the field</source>
        <translation>Macht das Sample um die Dezibel im Feld lauter oder leiser</translation>
    </message>
    <message>
        <source>Make the sample so loud that its loudest value is full scale</source>
        <translation>Macht das Sample so laut, dass sein lautester Wert Vollaussteuerung ist</translation>
    </message>
    <message>
        <source>Make two mono samples of a stereo file, with -L and -R behind their names</source>
        <translation>Macht zwei Mono-Samples aus einer Stereodatei, mit -L und -R hinter dem Namen</translation>
    </message>
    <message>
        <source>Milliseconds of the fade</source>
        <translation>Millisekunden der Überblendung</translation>
    </message>
    <message>
        <source>No local sample chosen</source>
        <translation>Kein lokales Sample gewählt</translation>
    </message>
    <message>
        <source>Normalise</source>
        <translation>Normalisieren</translation>
    </message>
    <message>
        <source>Origin:</source>
        <translation>Herkunft:</translation>
    </message>
    <message>
        <source>Original pitch:</source>
        <translation>Grundton:</translation>
    </message>
    <message>
        <source>Play mode:</source>
        <translation>Spielart:</translation>
    </message>
    <message>
        <source>Put a mono file on both channels</source>
        <translation>Legt eine Monodatei auf beide Kanäle</translation>
    </message>
    <message>
        <source>Rate (Hz):</source>
        <translation>Rate (Hz):</translation>
    </message>
    <message>
        <source>Read the sampler and the spool anew</source>
        <translation>Liest Sampler und Spool neu</translation>
    </message>
    <message>
        <source>Remove the chosen sample from the sampler&apos;s memory</source>
        <translation>Entfernt das gewählte Sample aus dem Speicher des Samplers</translation>
    </message>
    <message>
        <source>Search samples on the sampler</source>
        <translation>Samples auf dem Sampler suchen</translation>
    </message>
    <message>
        <source>Search samples on this computer</source>
        <translation>Samples auf diesem Computer suchen</translation>
    </message>
    <message>
        <source>Send the chosen sample to the sampler</source>
        <translation>Sendet das gewählte Sample an den Sampler</translation>
    </message>
    <message>
        <source>Show what the file says about the chosen sample</source>
        <translation>Zeigt, was die Datei über das gewählte Sample sagt</translation>
    </message>
    <message>
        <source>State of the spool</source>
        <translation>Zustand des Spools</translation>
    </message>
    <message>
        <source>Take the loop away; the sound stays</source>
        <translation>Nimmt den Loop weg; der Klang bleibt</translation>
    </message>
    <message>
        <source>The chosen sample on this computer; its loop is shaded</source>
        <translation>Das gewählte Sample auf diesem Computer; sein Loop ist schattiert</translation>
    </message>
    <message>
        <source>The chosen sample, or the files that hover over the list</source>
        <translation>Das gewählte Sample, oder die Dateien, die über der Liste schweben</translation>
    </message>
    <message>
        <source>The name for Rename this Sample</source>
        <translation>Der Name für Rename this Sample</translation>
    </message>
    <message>
        <source>The sampler holds no samples</source>
        <translation>Der Sampler enthält keine Samples</translation>
    </message>
    <message>
        <source>The samples in the sampler&apos;s memory</source>
        <translation>Die Samples im Speicher des Samplers</translation>
    </message>
    <message>
        <source>The samples in the spool; drop sound files here to import them</source>
        <translation>Die Samples im Spool; Klangdateien, die Sie hier ablegen, werden importiert</translation>
    </message>
    <message>
        <source>The spool is empty: download samples, or drop sound files here</source>
        <translation>Der Spool ist leer: Holen Sie Samples, oder legen Sie hier Klangdateien ab</translation>
    </message>
    <message>
        <source>Turn the end of the loop slowly into what stands in front of it, so that it comes round without a click</source>
        <translation>Blendet das Ende des Loops langsam in das über, was vor ihm steht, damit er ohne Knacken herumkommt</translation>
    </message>
    <message>
        <source>Waveform</source>
        <translation>Wellenform</translation>
    </message>
    <message>
        <source>What most samplers take</source>
        <translation>Was die meisten Sampler nehmen</translation>
    </message>
    <message>
        <source>dB</source>
        <translation>dB</translation>
    </message>
    <message>
        <source>ms</source>
        <translation>ms</translation>
    </message>
    <message>
        <source>, looped</source>
        <translation>, mit Schleife</translation>
    </message>
    <message>
        <source>Choose a sample on this computer first!</source>
        <translation>Wählen Sie zuerst ein Sample auf diesem Computer!</translation>
    </message>
    <message>
        <source>Choose a sample on this computer first</source>
        <translation>Wählen Sie zuerst ein Sample auf diesem Computer</translation>
    </message>
    <message>
        <source>Hear the chosen sample of this computer as the sampler will hold it; once more stops it (Space)</source>
        <translation>Das gewählte Sample dieses Computers hören, wie der Sampler es halten wird; noch einmal hält es an (Leertaste)</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Abspielen</translation>
    </message>
    <message>
        <source>Playing &apos;%s&apos; %s: %u bit, %u Hz, %s%s.</source>
        <translation>&apos;%s&apos; erklingt, %s: %u Bit, %u Hz, %s%s.</translation>
    </message>
    <message>
        <source>Search multis</source>
        <translation>Multis suchen</translation>
    </message>
    <message>
        <source>This program was made without sound.</source>
        <translation>Dieses Programm wurde ohne Ton gebaut.</translation>
    </message>
    <message>
        <source>as %s will hold it</source>
        <translation>wie %s es halten wird</translation>
    </message>
    <message>
        <source>as a conversion for %s would make it</source>
        <translation>wie eine Umwandlung für %s es machen würde</translation>
    </message>
    <message>
        <source>mono</source>
        <translation>mono</translation>
    </message>
    <message>
        <source>stereo</source>
        <translation>stereo</translation>
    </message>
    <message>
        <source> on the left</source>
        <translation> links</translation>
    </message>
    <message>
        <source> on the right</source>
        <translation> rechts</translation>
    </message>
    <message>
        <source>%d of %d are in the backup: %d came now, %d were as before.</source>
        <translation>%d von %d sind in der Sicherung: %d kamen jetzt, %d waren wie zuvor.</translation>
    </message>
    <message>
        <source>%d of %d were brought to the sampler.</source>
        <translation>%d von %d wurden zum Sampler gebracht.</translation>
    </message>
    <message>
        <source>%llu of %llu values differ, the first at %llu%s.</source>
        <translation>%llu von %llu Werten weichen ab, der erste bei %llu%s.</translation>
    </message>
    <message>
        <source>%llu values were meant to arrive, and %llu did.</source>
        <translation>%llu Werte sollten ankommen, und %llu kamen an.</translation>
    </message>
    <message>
        <source>%s on the sampler is as it was meant to arrive: %llu values were compared.</source>
        <translation>%s auf dem Sampler ist so, wie es ankommen sollte: %llu Werte wurden verglichen.</translation>
    </message>
    <message>
        <source>%s on the sampler is the same program.</source>
        <translation>%s auf dem Sampler ist dasselbe Programm.</translation>
    </message>
    <message>
        <source>%s was not downloaded.</source>
        <translation>%s wurde nicht geholt.</translation>
    </message>
    <message>
        <source>%s was not downloaded: stopped.</source>
        <translation>%s wurde nicht geholt: angehalten.</translation>
    </message>
    <message>
        <source>%s was not sent: stopped.</source>
        <translation>%s wurde nicht gesendet: angehalten.</translation>
    </message>
    <message>
        <source>%zu of %zu parameters differ, the first is %s</source>
        <translation>%zu von %zu Parametern weichen ab, der erste ist %s</translation>
    </message>
    <message>
        <source>, which is %s instead of %s.</source>
        <translation>, und zwar %s statt %s.</translation>
    </message>
    <message>
        <source>A restore deletes what the backup does not hold</source>
        <translation>Zurückspielen löscht, was die Sicherung nicht enthält</translation>
    </message>
    <message>
        <source>Also what looks as it did before. Of samples on the USB the sampler lists the names alone</source>
        <translation>Auch, was aussieht wie zuvor. Von Samples am USB nennt der Sampler nur die Namen</translation>
    </message>
    <message>
        <source>Another folder</source>
        <translation>Ein anderer Ordner</translation>
    </message>
    <message>
        <source>Backup of &apos;%s&apos;, an %s: programs %d, samples %d, names of multis %d, %s. %s</source>
        <translation>Sicherung von &apos;%s&apos;, einem %s: Programme %d, Samples %d, Namen von Multis %d, %s. %s</translation>
    </message>
    <message>
        <source>Backup...</source>
        <translation>Sicherung...</translation>
    </message>
    <message>
        <source>Begin</source>
        <translation>Anfangen</translation>
    </message>
    <message>
        <source>Bring all that the sampler holds into a folder, and back</source>
        <translation>Alles, was der Sampler enthält, in einen Ordner bringen, und zurück</translation>
    </message>
    <message>
        <source>Bring into the folder what changed since the last backup</source>
        <translation>In den Ordner bringen, was sich seit der letzten Sicherung geändert hat</translation>
    </message>
    <message>
        <source>Choose a local program first.</source>
        <translation>Wählen Sie zuerst ein lokales Programm.</translation>
    </message>
    <message>
        <source>Choose a local sample first.</source>
        <translation>Wählen Sie zuerst ein lokales Sample.</translation>
    </message>
    <message>
        <source>Choose...</source>
        <translation>Wählen...</translation>
    </message>
    <message>
        <source>Compare after each transfer</source>
        <translation>Nach jeder Übertragung vergleichen</translation>
    </message>
    <message>
        <source>Compare each sample after its transfer</source>
        <translation>Jedes Sample nach der Übertragung vergleichen</translation>
    </message>
    <message>
        <source>Compare with the sampler</source>
        <translation>Mit dem Sampler vergleichen</translation>
    </message>
    <message>
        <source>Complete.</source>
        <translation>Vollständig.</translation>
    </message>
    <message>
        <source>Do it?</source>
        <translation>Ausführen?</translation>
    </message>
    <message>
        <source>Each sample is read back, which takes as long again</source>
        <translation>Jedes Sample wird zurückgelesen, was noch einmal so lange dauert</translation>
    </message>
    <message>
        <source>Folder of the backup</source>
        <translation>Ordner der Sicherung</translation>
    </message>
    <message>
        <source>Folder:</source>
        <translation>Ordner:</translation>
    </message>
    <message>
        <source>History...</source>
        <translation>Verlauf...</translation>
    </message>
    <message>
        <source>In the backup</source>
        <translation>In der Sicherung</translation>
    </message>
    <message>
        <source>It broke off: Begin goes on from there.</source>
        <translation>Sie brach ab: Anfangen macht dort weiter.</translation>
    </message>
    <message>
        <source>It could not be compared.</source>
        <translation>Es konnte nicht verglichen werden.</translation>
    </message>
    <message>
        <source>It has %u Hz instead of %u Hz.</source>
        <translation>Es hat %u Hz statt %u Hz.</translation>
    </message>
    <message>
        <source>It has %u bits instead of %u.</source>
        <translation>Es hat %u Bit statt %u.</translation>
    </message>
    <message>
        <source>It has %u channels instead of %u.</source>
        <translation>Es hat %u Kanäle statt %u.</translation>
    </message>
    <message>
        <source>It is not known whether %s.</source>
        <translation>Es ist nicht bekannt, ob %s.</translation>
    </message>
    <message>
        <source>It is not known whether %s: the list could not be read again.
%s</source>
        <translation>Es ist nicht bekannt, ob %s: Die Liste ließ sich nicht noch einmal lesen.
%s</translation>
    </message>
    <message>
        <source>It is not the same.</source>
        <translation>Es ist nicht gleich.</translation>
    </message>
    <message>
        <source>It is read back, which takes as long again</source>
        <translation>Es wird zurückgelesen, was noch einmal so lange dauert</translation>
    </message>
    <message>
        <source>It is too large.</source>
        <translation>Es ist zu groß.</translation>
    </message>
    <message>
        <source>It was compared and is the same.</source>
        <translation>Es wurde verglichen und ist gleich.</translation>
    </message>
    <message>
        <source>It was put into the folder earlier, and everything was looked at anew.</source>
        <translation>Es wurde in den Ordner earlier gelegt, und alles wurde neu angesehen.</translation>
    </message>
    <message>
        <source>Its last line does not agree with the others: it was changed or is not whole.</source>
        <translation>Seine letzte Zeile passt nicht zu den anderen: es wurde verändert oder ist nicht ganz.</translation>
    </message>
    <message>
        <source>Its values have another size.</source>
        <translation>Seine Werte haben eine andere Größe.</translation>
    </message>
    <message>
        <source>Leave names out of recordings</source>
        <translation>Namen aus Aufzeichnungen weglassen</translation>
    </message>
    <message>
        <source>Line %d: %s</source>
        <translation>Zeile %d: %s</translation>
    </message>
    <message>
        <source>Load a sampler first</source>
        <translation>Zuerst einen Sampler laden</translation>
    </message>
    <message>
        <source>Move everything again</source>
        <translation>Alles noch einmal übertragen</translation>
    </message>
    <message>
        <source>Nobody knows this line.</source>
        <translation>Diese Zeile kennt niemand.</translation>
    </message>
    <message>
        <source>Nothing had to be brought to the sampler.</source>
        <translation>Nichts musste zum Sampler gebracht werden.</translation>
    </message>
    <message>
        <source>Nothing yet. Begin brings all that the sampler holds into the folder.</source>
        <translation>Noch nichts. Anfangen bringt alles, was der Sampler enthält, in den Ordner.</translation>
    </message>
    <message>
        <source>Otherwise nothing is deleted on the sampler</source>
        <translation>Sonst wird auf dem Sampler nichts gelöscht</translation>
    </message>
    <message>
        <source>Put back what was deleted, renamed or changed on the sampler last</source>
        <translation>Bringt zurück, was auf dem Sampler zuletzt gelöscht, umbenannt oder geändert wurde</translation>
    </message>
    <message>
        <source>Put other words for the names of programs and samples in the next recording</source>
        <translation>Setzt in der nächsten Aufzeichnung andere Wörter an die Stelle der Namen von Programmen und Samples</translation>
    </message>
    <message>
        <source>Read the sampler&apos;s programs again, and tell where the one of that name differs</source>
        <translation>Die Programme des Samplers noch einmal lesen und sagen, wo das gleichen Namens abweicht</translation>
    </message>
    <message>
        <source>Read the sampler&apos;s sample of that name back, and tell where it differs</source>
        <translation>Das Sample gleichen Namens vom Sampler zurücklesen und sagen, wo es abweicht</translation>
    </message>
    <message>
        <source>Record traffic</source>
        <translation>Verkehr aufzeichnen</translation>
    </message>
    <message>
        <source>Restore...</source>
        <translation>Zurückspielen...</translation>
    </message>
    <message>
        <source>See what was changed on the sampler, and put it back</source>
        <translation>Zeigt, was auf dem Sampler geändert wurde, und bringt es zurück</translation>
    </message>
    <message>
        <source>Show what would be sent to the sampler, and ask</source>
        <translation>Zeigen, was zum Sampler gesendet würde, und fragen</translation>
    </message>
    <message>
        <source>State of the backup</source>
        <translation>Stand der Sicherung</translation>
    </message>
    <message>
        <source>The backup broke off, and does not hold everything.</source>
        <translation>Die Sicherung brach ab und enthält nicht alles.</translation>
    </message>
    <message>
        <source>The backup is empty.</source>
        <translation>Die Sicherung ist leer.</translation>
    </message>
    <message>
        <source>The comparison was stopped.</source>
        <translation>Der Vergleich wurde angehalten.</translation>
    </message>
    <message>
        <source>The manifest [%s] is damaged. %s</source>
        <translation>Das Verzeichnis [%s] ist beschädigt. %s</translation>
    </message>
    <message>
        <source>The sampler holds no program called %s.</source>
        <translation>Der Sampler hat kein Programm namens %s.</translation>
    </message>
    <message>
        <source>The sampler holds no sample called %s.</source>
        <translation>Der Sampler hat kein Sample namens %s.</translation>
    </message>
    <message>
        <source>The sampler was left as it is.</source>
        <translation>Der Sampler blieb, wie er ist.</translation>
    </message>
    <message>
        <source>The section above lacks a line.</source>
        <translation>Dem Abschnitt darüber fehlt eine Zeile.</translation>
    </message>
    <message>
        <source>There is no backup in [%s].</source>
        <translation>In [%s] ist keine Sicherung.</translation>
    </message>
    <message>
        <source>There is no backup in this folder that could be restored</source>
        <translation>In diesem Ordner ist keine Sicherung, die zurückgespielt werden könnte</translation>
    </message>
    <message>
        <source>This is no checksum.</source>
        <translation>Das ist keine Prüfsumme.</translation>
    </message>
    <message>
        <source>This is no file of the backup.</source>
        <translation>Das ist keine Datei der Sicherung.</translation>
    </message>
    <message>
        <source>This is no manifest of a backup.</source>
        <translation>Das ist kein Verzeichnis einer Sicherung.</translation>
    </message>
    <message>
        <source>This is no number.</source>
        <translation>Das ist keine Zahl.</translation>
    </message>
    <message>
        <source>This is no section of a backup.</source>
        <translation>Das ist kein Abschnitt einer Sicherung.</translation>
    </message>
    <message>
        <source>This is no text in quotation marks.</source>
        <translation>Das ist kein Text in Anführungszeichen.</translation>
    </message>
    <message>
        <source>This is the backup of &apos;%s&apos;, an %s. An %s cannot take it.</source>
        <translation>Das ist die Sicherung von &apos;%s&apos;, einem %s. Ein %s kann sie nicht annehmen.</translation>
    </message>
    <message>
        <source>This line says nothing.</source>
        <translation>Diese Zeile sagt nichts.</translation>
    </message>
    <message>
        <source>Undo on the sampler</source>
        <translation>Auf dem Sampler zurücknehmen</translation>
    </message>
    <message>
        <source>Upload of %s stopped.</source>
        <translation>Das Senden von %s wurde angehalten.</translation>
    </message>
    <message>
        <source>VELMOR Backup</source>
        <translation>VELMOR Sicherung</translation>
    </message>
    <message>
        <source>What is there stays; the next backup goes on from here.</source>
        <translation>Was da ist, bleibt; die nächste Sicherung macht hier weiter.</translation>
    </message>
    <message>
        <source>What the folder holds, or what a restore would do</source>
        <translation>Was der Ordner enthält, oder was ein Zurückspielen täte</translation>
    </message>
    <message>
        <source>Where the backup is; a folder for each sampler</source>
        <translation>Wo die Sicherung ist; ein Ordner für jeden Sampler</translation>
    </message>
    <message>
        <source>Write everything that goes over the lines to a file, for a report</source>
        <translation>Schreibt alles, was über die Leitungen geht, in eine Datei, für einen Bericht</translation>
    </message>
    <message>
        <source>[%s] cannot be read.</source>
        <translation>[%s] kann nicht gelesen werden.</translation>
    </message>
    <message>
        <source>[%s] holds the backup of &apos;%s&apos;, an %s. Choose another folder for &apos;%s&apos;.</source>
        <translation>[%s] enthält die Sicherung von &apos;%s&apos;, einem %s. Wählen Sie einen anderen Ordner für &apos;%s&apos;.</translation>
    </message>
    <message>
        <source>another one has the same name, and would be replaced</source>
        <translation>ein anderes hat denselben Namen und würde ersetzt</translation>
    </message>
    <message>
        <source>as before</source>
        <translation>wie zuvor</translation>
    </message>
    <message>
        <source>delete %d on the sampler</source>
        <translation>%d auf dem Sampler löschen</translation>
    </message>
    <message>
        <source>delete on the sampler</source>
        <translation>auf dem Sampler löschen</translation>
    </message>
    <message>
        <source>failed</source>
        <translation>fehlgeschlagen</translation>
    </message>
    <message>
        <source>it is not known whether it arrived</source>
        <translation>es ist nicht bekannt, ob es angekommen ist</translation>
    </message>
    <message>
        <source>its file is missing, or was changed since the backup</source>
        <translation>seine Datei fehlt oder wurde seit der Sicherung verändert</translation>
    </message>
    <message>
        <source>keep %d as they are</source>
        <translation>%d so lassen</translation>
    </message>
    <message>
        <source>keep</source>
        <translation>so lassen</translation>
    </message>
    <message>
        <source>leave out %d, which cannot be sent</source>
        <translation>%d auslassen, die nicht gesendet werden können</translation>
    </message>
    <message>
        <source>leave out</source>
        <translation>auslassen</translation>
    </message>
    <message>
        <source>missing.</source>
        <translation>fehlend.</translation>
    </message>
    <message>
        <source>multis stay in the sampler; this is its name alone</source>
        <translation>Multis bleiben im Sampler; dies ist nur sein Name</translation>
    </message>
    <message>
        <source>replace %d</source>
        <translation>%d ersetzen</translation>
    </message>
    <message>
        <source>replace</source>
        <translation>ersetzen</translation>
    </message>
    <message>
        <source>send %d</source>
        <translation>%d senden</translation>
    </message>
    <message>
        <source>send</source>
        <translation>senden</translation>
    </message>
    <message>
        <source>the same as far as its header tells</source>
        <translation>gleich, soweit sein Kopf es sagt</translation>
    </message>
    <message>
        <source>the sampler does not list it</source>
        <translation>der Sampler führt es nicht auf</translation>
    </message>
    <message>
        <source>this sampler deletes it on its own panel alone</source>
        <translation>dieser Sampler löscht es nur an seinem Bedienfeld</translation>
    </message>
    <message>
        <source>this sampler takes a program only over one of its name; make one on its own panel</source>
        <translation>dieser Sampler nimmt ein Programm nur über einem gleichen Namens an; legen Sie eines an seinem Bedienfeld an</translation>
    </message>
    <message>
        <source>this sampler takes no programs</source>
        <translation>dieser Sampler nimmt keine Programme an</translation>
    </message>
    <message>
        <source>too many.</source>
        <translation>überzählig.</translation>
    </message>
    <message>
        <source>%d of %d are in the backup</source>
        <translation>%d von %d sind in der Sicherung</translation>
    </message>
    <message>
        <source>%d of %d came into the backup.</source>
        <translation>%d von %d kamen in die Sicherung.</translation>
    </message>
    <message>
        <source>%d of %d done</source>
        <translation>%d von %d fertig</translation>
    </message>
    <message>
        <source>Another sampler is loaded than this restore is for.</source>
        <translation>Es ist ein anderer Sampler geladen als der, für den diese Wiederherstellung ist.</translation>
    </message>
    <message>
        <source>Backing up</source>
        <translation>Sichern</translation>
    </message>
    <message>
        <source>No sampler holds so much.</source>
        <translation>So viel fasst kein Sampler.</translation>
    </message>
    <message>
        <source>Not brought to the sampler: </source>
        <translation>Nicht zum Sampler gebracht: </translation>
    </message>
    <message>
        <source>Not in the backup: </source>
        <translation>Nicht in der Sicherung: </translation>
    </message>
    <message>
        <source>Not tried: </source>
        <translation>Nicht versucht: </translation>
    </message>
    <message>
        <source>Put back in part; undo goes on with it</source>
        <translation>Teilweise zurückgeholt; Rückgängig macht damit weiter</translation>
    </message>
    <message>
        <source>Restoring</source>
        <translation>Wiederherstellen</translation>
    </message>
    <message>
        <source>The sampler holds several samples called &apos;%s&apos; and gives the first alone. Rename the others on its panel.</source>
        <translation>Der Sampler hat mehrere Samples namens &apos;%s&apos; und gibt nur das erste heraus. Benennen Sie die anderen an seinem Bedienfeld um.</translation>
    </message>
    <message>
        <source>another one has the same name, and would be deleted</source>
        <translation>ein anderes heißt genauso und würde gelöscht</translation>
    </message>
    <message>
        <source> %llu values were cut at full scale.</source>
        <translation> %llu Werte wurden bei Vollaussteuerung abgeschnitten.</translation>
    </message>
    <message>
        <source> In runs of %d bytes, %d ms apart, everything arrives.</source>
        <translation> In Stücken von %d Bytes mit %d ms Abstand kommt alles an.</translation>
    </message>
    <message>
        <source> No shorter run helps: the interface or the cable loses bytes at any length.</source>
        <translation> Auch kürzere Stücke helfen nicht: Die Schnittstelle oder das Kabel verliert Bytes bei jeder Länge.</translation>
    </message>
    <message>
        <source> compressed</source>
        <translation> komprimiert</translation>
    </message>
    <message>
        <source> float</source>
        <translation> Gleitkomma</translation>
    </message>
    <message>
        <source> · and %zu more</source>
        <translation> · und %zu weitere</translation>
    </message>
    <message>
        <source> · keeps its loop and its root note %s</source>
        <translation> · behält seinen Loop und seinen Grundton %s</translation>
    </message>
    <message>
        <source> · keeps its loop</source>
        <translation> · behält seinen Loop</translation>
    </message>
    <message>
        <source> · keeps its root note %s</source>
        <translation> · behält seinen Grundton %s</translation>
    </message>
    <message>
        <source>%.02f s of silence</source>
        <translation>%.02f s Stille</translation>
    </message>
    <message>
        <source>%.0f bytes/s</source>
        <translation>%.0f Bytes/s</translation>
    </message>
    <message>
        <source>%1 shown</source>
        <translation>%1 gezeigt</translation>
    </message>
    <message>
        <source>%1 to %2 of %3</source>
        <translation>%1 bis %2 von %3</translation>
    </message>
    <message>
        <source>%d bit, %u Hz</source>
        <translation>%d Bit, %u Hz</translation>
    </message>
    <message>
        <source>%d bit, %u Hz, both channels mixed to one</source>
        <translation>%d Bit, %u Hz, beide Kanäle zu einem gemischt</translation>
    </message>
    <message>
        <source>%d converted, %d fitted already, of %s.</source>
        <translation>%d konvertiert, %d passten schon, von %s.</translation>
    </message>
    <message>
        <source>%d messages were sent, and all %d answers are what they were.</source>
        <translation>%d Meldungen wurden gesendet, und alle %d Antworten sind, was sie waren.</translation>
    </message>
    <message>
        <source>%d of %d packets of [%s] came damaged, late or not at all. The file is saved, but it clicks or falls silent in these places. Another download may help.</source>
        <translation>%d von %d Paketen von [%s] kamen beschädigt, zu spät oder gar nicht. Die Datei ist gesichert, aber an diesen Stellen knackt sie oder ist still. Noch ein Download hilft vielleicht.</translation>
    </message>
    <message>
        <source>%d of %d refused: %s</source>
        <translation>%d von %d abgelehnt: %s</translation>
    </message>
    <message>
        <source>%d/%d samples downloaded!</source>
        <translation>%d/%d Samples geholt!</translation>
    </message>
    <message>
        <source>%g dB louder.</source>
        <translation>%g dB lauter.</translation>
    </message>
    <message>
        <source>%g dB softer.</source>
        <translation>%g dB leiser.</translation>
    </message>
    <message>
        <source>%s Nothing was put back.</source>
        <translation>%s Nichts wurde zurückgeholt.</translation>
    </message>
    <message>
        <source>%s and %s</source>
        <translation>%s und %s</translation>
    </message>
    <message>
        <source>%s at about %s, not measured yet on this connection</source>
        <translation>%s bei etwa %s, auf dieser Verbindung noch nicht gemessen</translation>
    </message>
    <message>
        <source>%s at the %s measured on this connection</source>
        <translation>%s bei den auf dieser Verbindung gemessenen %s</translation>
    </message>
    <message>
        <source>%s down
on this connection</source>
        <translation>Holen mit %s
auf dieser Verbindung</translation>
    </message>
    <message>
        <source>%s is damaged.</source>
        <translation>%s ist beschädigt.</translation>
    </message>
    <message>
        <source>%s is no number.</source>
        <translation>%s ist keine Zahl.</translation>
    </message>
    <message>
        <source>%s is not what it can be.</source>
        <translation>%s ist kein möglicher Wert.</translation>
    </message>
    <message>
        <source>%s is too large.</source>
        <translation>%s ist zu groß.</translation>
    </message>
    <message>
        <source>%s on the sampler</source>
        <translation>%s auf dem Sampler</translation>
    </message>
    <message>
        <source>%s on this connection</source>
        <translation>%s auf dieser Verbindung</translation>
    </message>
    <message>
        <source>%s takes samples at their own length.</source>
        <translation>%s nimmt Samples in ihrer eigenen Länge.</translation>
    </message>
    <message>
        <source>%s to %s</source>
        <translation>%s in %s</translation>
    </message>
    <message>
        <source>%s up, %s down
on this connection</source>
        <translation>Senden mit %s, Holen mit %s
auf dieser Verbindung</translation>
    </message>
    <message>
        <source>%s was left as it is on the sampler.</source>
        <translation>%s wurde auf dem Sampler so gelassen, wie es ist.</translation>
    </message>
    <message>
        <source>%s was put back</source>
        <translation>%s zurückgeholt wurde</translation>
    </message>
    <message>
        <source>%s
Convert it now, and upload what it becomes?</source>
        <translation>%s
Jetzt konvertieren und senden, was daraus wird?</translation>
    </message>
    <message>
        <source>%s
Go on all the same?</source>
        <translation>%s
Trotzdem fortfahren?</translation>
    </message>
    <message>
        <source>%s
Upload them all the same?</source>
        <translation>%s
Trotzdem senden?</translation>
    </message>
    <message>
        <source>%u Hz, %u bit%s, %u channel, %.02f s</source>
        <translation>%u Hz, %u Bit%s, %u Kanal, %.02f s</translation>
    </message>
    <message>
        <source>%u Hz, %u bit%s, %u channels, %.02f s</source>
        <translation>%u Hz, %u Bit%s, %u Kanäle, %.02f s</translation>
    </message>
    <message>
        <source>%zu bytes</source>
        <translation>%zu Bytes</translation>
    </message>
    <message>
        <source>%zu of %d answers are not what they were. %s</source>
        <translation>%zu von %d Antworten sind nicht, was sie waren. %s</translation>
    </message>
    <message>
        <source>%zu step · %s</source>
        <translation>%zu Schritt · %s</translation>
    </message>
    <message>
        <source>%zu steps · %s</source>
        <translation>%zu Schritte · %s</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Schließen</translation>
    </message>
    <message>
        <source>&amp;Delete from the history</source>
        <translation>Aus dem Verlauf &amp;löschen</translation>
    </message>
    <message>
        <source>&amp;Put back</source>
        <translation>&amp;Zurückholen</translation>
    </message>
    <message>
        <source>&apos;%s&apos; has %s now.</source>
        <translation>&apos;%s&apos; hat jetzt %s.</translation>
    </message>
    <message>
        <source>&apos;%s&apos; is as it was before.</source>
        <translation>&apos;%s&apos; ist wieder wie zuvor.</translation>
    </message>
    <message>
        <source>, %1 chosen</source>
        <translation>, %1 gewählt</translation>
    </message>
    <message>
        <source>, loop from %1 s to %2 s</source>
        <translation>, Loop von %1 s bis %2 s</translation>
    </message>
    <message>
        <source>, start at %1 s, end at %2 s</source>
        <translation>, Anfang bei %1 s, Ende bei %2 s</translation>
    </message>
    <message>
        <source>A file of %u bit%s and %u channel would arrive as %s. %s</source>
        <translation>Eine Datei mit %u Bit%s und %u Kanal käme als %s an. %s</translation>
    </message>
    <message>
        <source>A file of %u bit%s and %u channels would arrive as %s. %s</source>
        <translation>Eine Datei mit %u Bit%s und %u Kanälen käme als %s an. %s</translation>
    </message>
    <message>
        <source>A line is no section and has no value.</source>
        <translation>Eine Zeile ist kein Abschnitt und hat keinen Wert.</translation>
    </message>
    <message>
        <source>A program that is deleted: %s</source>
        <translation>Ein Programm, das gelöscht wird: %s</translation>
    </message>
    <message>
        <source>A section is not the next one.</source>
        <translation>Ein Abschnitt ist nicht der nächste.</translation>
    </message>
    <message>
        <source>A test over a loop cable finds what is kept here, where it is needed</source>
        <translation>Ein Test über ein Schleifenkabel findet, was hier behalten wird, wo es nötig ist</translation>
    </message>
    <message>
        <source>All %zu messages passed, up to %zu bytes.</source>
        <translation>Alle %zu Meldungen kamen heil an, bis zu %zu Bytes.</translation>
    </message>
    <message>
        <source>An %s takes no program that it does not hold, so undo cannot bring %s back. Its parameters are kept as a text.</source>
        <translation>Ein %s nimmt kein Programm an, das er nicht enthält; darum lässt sich %s nicht zurückholen. Die Parameter sind als Text gesichert.</translation>
    </message>
    <message>
        <source>An %s takes no request that deletes a keygroup, so undo cannot take the new ones off it.</source>
        <translation>Ein %s kennt keine Anfrage, die eine Keygroup löscht; darum lassen sich die neuen nicht von ihm zurücknehmen.</translation>
    </message>
    <message>
        <source>An %s takes no request that deletes a program, so undo cannot take a new one off it.</source>
        <translation>Ein %s kennt keine Anfrage, die ein Programm löscht; darum lässt sich ein neues nicht von ihm zurücknehmen.</translation>
    </message>
    <message>
        <source>An %s takes no request that deletes a sample, so undo cannot take a new one off it.</source>
        <translation>Ein %s kennt keine Anfrage, die ein Sample löscht; darum lässt sich ein neues nicht von ihm zurücknehmen.</translation>
    </message>
    <message>
        <source>At most, for each sampler</source>
        <translation>Höchstens, für jeden Sampler</translation>
    </message>
    <message>
        <source>Begin test</source>
        <translation>Test beginnen</translation>
    </message>
    <message>
        <source>Beyond it, the oldest steps are let go</source>
        <translation>Darüber hinaus werden die ältesten Schritte verworfen</translation>
    </message>
    <message>
        <source>Bits</source>
        <translation>Bits</translation>
    </message>
    <message>
        <source>Bits:</source>
        <translation>Bits:</translation>
    </message>
    <message>
        <source>Brand:</source>
        <translation>Marke:</translation>
    </message>
    <message>
        <source>Can be put back</source>
        <translation>Lässt sich zurückholen</translation>
    </message>
    <message>
        <source>Cannot be put back: %s</source>
        <translation>Lässt sich nicht zurückholen: %s</translation>
    </message>
    <message>
        <source>Ch</source>
        <translation>Kan.</translation>
    </message>
    <message>
        <source>Changed on the sampler</source>
        <translation>Auf dem Sampler geändert</translation>
    </message>
    <message>
        <source>Changed the program %s</source>
        <translation>Programm geändert: %s</translation>
    </message>
    <message>
        <source>Channels</source>
        <translation>Kanäle</translation>
    </message>
    <message>
        <source>Channels:</source>
        <translation>Kanäle:</translation>
    </message>
    <message>
        <source>Choose MIDI-Out and MIDI-In in Basic settings first.</source>
        <translation>Wählen Sie zuerst MIDI-Out und MIDI-In in Basic settings.</translation>
    </message>
    <message>
        <source>Choose a sample on the sampler first!</source>
        <translation>Wählen Sie zuerst ein Sample auf dem Sampler!</translation>
    </message>
    <message>
        <source>Choose a step first</source>
        <translation>Wählen Sie zuerst einen Schritt</translation>
    </message>
    <message>
        <source>Convert it to 16 bit mono with another program first.</source>
        <translation>Konvertieren Sie sie zuerst mit einem anderen Programm in 16 Bit mono.</translation>
    </message>
    <message>
        <source>Damaged: %s</source>
        <translation>Beschädigt: %s</translation>
    </message>
    <message>
        <source>Delete %d step from the history? What was kept in it is gone then.</source>
        <translation>%d Schritt aus dem Verlauf löschen? Was darin gesichert war, ist dann weg.</translation>
    </message>
    <message>
        <source>Delete %d steps from the history? What was kept in them is gone then.</source>
        <translation>%d Schritte aus dem Verlauf löschen? Was darin gesichert war, ist dann weg.</translation>
    </message>
    <message>
        <source>Deleted %d step from the history.</source>
        <translation>%d Schritt aus dem Verlauf gelöscht.</translation>
    </message>
    <message>
        <source>Deleted %d steps from the history.</source>
        <translation>%d Schritte aus dem Verlauf gelöscht.</translation>
    </message>
    <message>
        <source>Deleted the program %s</source>
        <translation>Programm gelöscht: %s</translation>
    </message>
    <message>
        <source>Deleted the sample %s</source>
        <translation>Sample gelöscht: %s</translation>
    </message>
    <message>
        <source>Deleting</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Device:</source>
        <translation>Gerät:</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Fertig</translation>
    </message>
    <message>
        <source>Download the other samples? (%d of %d)</source>
        <translation>Die anderen Samples holen? (%d von %d)</translation>
    </message>
    <message>
        <source>Downloading</source>
        <translation>Holen</translation>
    </message>
    <message>
        <source>End %1</source>
        <translation>Ende %1</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>Dateien</translation>
    </message>
    <message>
        <source>First difference</source>
        <translation>Erster Unterschied</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Forget</source>
        <translation>Vergessen</translation>
    </message>
    <message>
        <source>Go on without a copy? %s cannot be put back then.</source>
        <translation>Ohne Kopie fortfahren? %s lässt sich dann nicht zurückholen.</translation>
    </message>
    <message>
        <source>How many steps there are, and how large they are together</source>
        <translation>Wie viele Schritte es gibt, und wie groß sie zusammen sind</translation>
    </message>
    <message>
        <source>Import it with %s%s1 Channel and Mix Channels, or Create L/R files for both.</source>
        <translation>Importieren Sie sie mit %s%s1 Channel und Mix Channels, oder mit Create L/R files für beide.</translation>
    </message>
    <message>
        <source>Import it with %s.</source>
        <translation>Importieren Sie sie mit %s.</translation>
    </message>
    <message>
        <source>Import it with 1 Channel and Create L/R files, as a conversion keeps only its left channel.</source>
        <translation>Importieren Sie es mit 1 Channel und Create L/R files, da eine Konvertierung nur den linken Kanal behält.</translation>
    </message>
    <message>
        <source>Import options</source>
        <translation>Import-Optionen</translation>
    </message>
    <message>
        <source>In view</source>
        <translation>Zu sehen</translation>
    </message>
    <message>
        <source>It cannot be read.</source>
        <translation>Es lässt sich nicht lesen.</translation>
    </message>
    <message>
        <source>It has grown too long.</source>
        <translation>Sie ist zu lang geworden.</translation>
    </message>
    <message>
        <source>It is %.02f s long, and a transfer to %s carries %.02f s at %u Hz.</source>
        <translation>Es ist %.02f s lang, und eine Übertragung an %s fasst %.02f s bei %u Hz.</translation>
    </message>
    <message>
        <source>It is not there any more</source>
        <translation>Er ist nicht mehr da</translation>
    </message>
    <message>
        <source>It is not whole.</source>
        <translation>Er ist nicht vollständig.</translation>
    </message>
    <message>
        <source>It was broken off before the sampler was changed.</source>
        <translation>Er wurde abgebrochen, bevor der Sampler geändert wurde.</translation>
    </message>
    <message>
        <source>It was not converted.</source>
        <translation>Es wurde nicht konvertiert.</translation>
    </message>
    <message>
        <source>It was stopped.</source>
        <translation>Es wurde angehalten.</translation>
    </message>
    <message>
        <source>Its text cannot be used</source>
        <translation>Sein Text lässt sich nicht verwenden</translation>
    </message>
    <message>
        <source>Its text is too large.</source>
        <translation>Sein Text ist zu groß.</translation>
    </message>
    <message>
        <source>Keep samples without asking, however long it takes</source>
        <translation>Samples ohne Rückfrage sichern, so lange es auch dauert</translation>
    </message>
    <message>
        <source>Keep what is on the sampler before it is changed</source>
        <translation>Was auf dem Sampler ist, sichern, bevor es geändert wird</translation>
    </message>
    <message>
        <source>Kept</source>
        <translation>Gesichert</translation>
    </message>
    <message>
        <source>Kind</source>
        <translation>Art</translation>
    </message>
    <message>
        <source>Length</source>
        <translation>Länge</translation>
    </message>
    <message>
        <source>Let go of what was kept in these steps</source>
        <translation>Verwirft, was in diesen Schritten gesichert ist</translation>
    </message>
    <message>
        <source>Line %d, after %.6f seconds: byte %zu of the answer was %s and is %s.</source>
        <translation>Zeile %d, nach %.6f Sekunden: Byte %zu der Antwort war %s und ist %s.</translation>
    </message>
    <message>
        <source>Long messages to &apos;%s&apos; leave at once again.</source>
        <translation>Lange Meldungen an &apos;%s&apos; gehen wieder in einem Zug hinaus.</translation>
    </message>
    <message>
        <source>Long messages to &apos;%s&apos; leave in runs of %d bytes, %d ms apart.</source>
        <translation>Lange Meldungen an &apos;%s&apos; gehen in Stücken von %d Bytes mit %d ms Abstand hinaus.</translation>
    </message>
    <message>
        <source>Loop %1 to %2</source>
        <translation>Loop %1 bis %2</translation>
    </message>
    <message>
        <source>Loop cable from MIDI-Out to MIDI-In</source>
        <translation>Schleifenkabel von MIDI-Out nach MIDI-In</translation>
    </message>
    <message>
        <source>Loop</source>
        <translation>Loop</translation>
    </message>
    <message>
        <source>Make the sampler hold again what it held before this step; what it holds now is kept first</source>
        <translation>Gibt dem Sampler wieder, was er vor diesem Schritt enthielt; was er jetzt enthält, wird zuerst gesichert</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>Meldung</translation>
    </message>
    <message>
        <source>Messages</source>
        <translation>Meldungen</translation>
    </message>
    <message>
        <source>Name:</source>
        <translation>Name:</translation>
    </message>
    <message>
        <source>Names that would stand more than once on the sampler: %s</source>
        <translation>Namen, die mehr als einmal auf dem Sampler stünden: %s</translation>
    </message>
    <message>
        <source>No USB device %04X:%04X is plugged in.</source>
        <translation>Kein USB-Gerät %04X:%04X ist angeschlossen.</translation>
    </message>
    <message>
        <source>No answer came to what was sent.</source>
        <translation>Auf das Gesendete kam keine Antwort.</translation>
    </message>
    <message>
        <source>No name holds these letters</source>
        <translation>Kein Name enthält diese Buchstaben</translation>
    </message>
    <message>
        <source>No traffic is being recorded.</source>
        <translation>Es wird kein Verkehr aufgezeichnet.</translation>
    </message>
    <message>
        <source>Not everything could be removed from the history.</source>
        <translation>Nicht alles ließ sich aus dem Verlauf entfernen.</translation>
    </message>
    <message>
        <source>Not read yet</source>
        <translation>Noch nicht gelesen</translation>
    </message>
    <message>
        <source>Not tested yet. Plug a cable from MIDI-Out to MIDI-In of your interface, or load a sampler.</source>
        <translation>Noch nicht getestet. Stecken Sie ein Kabel von MIDI-Out nach MIDI-In Ihrer Schnittstelle, oder laden Sie einen Sampler.</translation>
    </message>
    <message>
        <source>Note:</source>
        <translation>Note:</translation>
    </message>
    <message>
        <source>Nothing comes back. Is a cable plugged from this output to this input, and are both chosen in Basic settings?</source>
        <translation>Nichts kommt zurück. Steckt ein Kabel von diesem Ausgang zu diesem Eingang, und sind beide in Basic settings gewählt?</translation>
    </message>
    <message>
        <source>Nothing is kept at all</source>
        <translation>Es wird gar nichts gesichert</translation>
    </message>
    <message>
        <source>Nothing is kept for this interface</source>
        <translation>Für diese Schnittstelle ist nichts festgehalten</translation>
    </message>
    <message>
        <source>Nothing is kept for this interface.</source>
        <translation>Für diese Schnittstelle ist nichts festgehalten.</translation>
    </message>
    <message>
        <source>Nothing was changed on this sampler yet, or nothing was kept.</source>
        <translation>Auf diesem Sampler wurde noch nichts geändert, oder es wurde nichts gesichert.</translation>
    </message>
    <message>
        <source>Nothing was downloaded.</source>
        <translation>Nichts wurde geholt.</translation>
    </message>
    <message>
        <source>Nothing was put back.</source>
        <translation>Nichts wurde zurückgeholt.</translation>
    </message>
    <message>
        <source>Nothing was put back: what was kept cannot be read.</source>
        <translation>Nichts wurde zurückgeholt: Das Gesicherte lässt sich nicht lesen.</translation>
    </message>
    <message>
        <source>Nothing was sent in this transcript.</source>
        <translation>In dieser Aufzeichnung wurde nichts gesendet.</translation>
    </message>
    <message>
        <source>Nothing would be left of the sample.</source>
        <translation>Vom Sample bliebe nichts übrig.</translation>
    </message>
    <message>
        <source>Of this step nothing was kept.</source>
        <translation>Von diesem Schritt wurde nichts gesichert.</translation>
    </message>
    <message>
        <source>One step at a time</source>
        <translation>Nur ein Schritt auf einmal</translation>
    </message>
    <message>
        <source>Only 16 bit mono files can be uploaded exactly.</source>
        <translation>Nur Dateien mit 16 Bit mono lassen sich genau senden.</translation>
    </message>
    <message>
        <source>Only WAV files of 12, 16 or 24 bits that a sampler can hold are changed here. Import the file first.</source>
        <translation>Hier werden nur WAV-Dateien mit 12, 16 oder 24 Bit geändert, die ein Sampler fassen kann. Importieren Sie die Datei zuerst.</translation>
    </message>
    <message>
        <source>Otherwise you are asked once where a sample takes more than five seconds</source>
        <translation>Sonst werden Sie einmal gefragt, wo ein Sample mehr als fünf Sekunden dauert</translation>
    </message>
    <message>
        <source>Outcome</source>
        <translation>Ergebnis</translation>
    </message>
    <message>
        <source>Overwrite existing samples? (%d of %d)</source>
        <translation>Vorhandene Samples überschreiben? (%d von %d)</translation>
    </message>
    <message>
        <source>Part of the sample in view</source>
        <translation>Sichtbarer Teil des Samples</translation>
    </message>
    <message>
        <source>Part</source>
        <translation>Anteil</translation>
    </message>
    <message>
        <source>Pitch</source>
        <translation>Tonhöhe</translation>
    </message>
    <message>
        <source>Programs always; samples where that is a matter of seconds, or after a question</source>
        <translation>Programme immer; Samples, wo das eine Sache von Sekunden ist, oder nach einer Frage</translation>
    </message>
    <message>
        <source>Put %s back as before.</source>
        <translation>%s wieder wie zuvor zurückgeholt.</translation>
    </message>
    <message>
        <source>Put back on the sampler: %s.</source>
        <translation>Auf dem Sampler zurückgenommen: %s.</translation>
    </message>
    <message>
        <source>Put back</source>
        <translation>Zurückgeholt</translation>
    </message>
    <message>
        <source>Read the folder anew</source>
        <translation>Liest den Ordner neu</translation>
    </message>
    <message>
        <source>Renamed the program %s</source>
        <translation>Programm umbenannt: %s</translation>
    </message>
    <message>
        <source>Renamed the sample %s</source>
        <translation>Sample umbenannt: %s</translation>
    </message>
    <message>
        <source>Replaced by an undo</source>
        <translation>Durch ein Zurücknehmen ersetzt</translation>
    </message>
    <message>
        <source>Replaying a transcript</source>
        <translation>Aufzeichnung wird wiederholt</translation>
    </message>
    <message>
        <source>Result</source>
        <translation>Ergebnis</translation>
    </message>
    <message>
        <source>Sample too long for a sample dump (%llu words at most)!</source>
        <translation>Das Sample ist zu lang für einen Sample-Dump (höchstens %llu Wörter)!</translation>
    </message>
    <message>
        <source>Sampler-Name:</source>
        <translation>Sampler-Name:</translation>
    </message>
    <message>
        <source>See whether the chosen ports pass on long messages</source>
        <translation>Prüft, ob die gewählten Ports lange Meldungen weitergeben</translation>
    </message>
    <message>
        <source>Self-test</source>
        <translation>Selbsttest</translation>
    </message>
    <message>
        <source>Send long messages to this interface at once again</source>
        <translation>Sendet lange Meldungen an diese Schnittstelle wieder in einem Zug</translation>
    </message>
    <message>
        <source>Send long messages to this interface in the runs that arrived</source>
        <translation>Sendet lange Meldungen an diese Schnittstelle in den Stücken, die ankamen</translation>
    </message>
    <message>
        <source>Send messages of 16 bytes to 64 KiB and compare what comes back</source>
        <translation>Sendet Meldungen von 16 Bytes bis 64 KiB und vergleicht, was zurückkommt</translation>
    </message>
    <message>
        <source>Show all</source>
        <translation>Alles zeigen</translation>
    </message>
    <message>
        <source>Show half as much of the sample (+)</source>
        <translation>Zeigt halb so viel vom Sample (+)</translation>
    </message>
    <message>
        <source>Show the whole sample (0)</source>
        <translation>Zeigt das ganze Sample (0)</translation>
    </message>
    <message>
        <source>Show twice as much of the sample (-)</source>
        <translation>Zeigt doppelt so viel vom Sample (-)</translation>
    </message>
    <message>
        <source>Sound files (*.wav *.WAV *.aif *.aiff *.aifc *.flac *.ogg *.opus *.mp3 *.au *.caf *.w64 *.rf64);;All files (*)</source>
        <translation>Klangdateien (*.wav *.WAV *.aif *.aiff *.aifc *.flac *.ogg *.opus *.mp3 *.au *.caf *.w64 *.rf64);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Start %1</source>
        <translation>Anfang %1</translation>
    </message>
    <message>
        <source>Start and end are those of the sample. Drag them in the picture to where it is to be cut.</source>
        <translation>Anfang und Ende sind die des Samples. Ziehen Sie sie im Bild dorthin, wo geschnitten werden soll.</translation>
    </message>
    <message>
        <source>State</source>
        <translation>Zustand</translation>
    </message>
    <message>
        <source>Stopped.</source>
        <translation>Angehalten.</translation>
    </message>
    <message>
        <source>Test this interface ...</source>
        <translation>Schnittstelle testen ...</translation>
    </message>
    <message>
        <source>Testing ...</source>
        <translation>Der Test läuft ...</translation>
    </message>
    <message>
        <source>The file cannot be read.</source>
        <translation>Die Datei lässt sich nicht lesen.</translation>
    </message>
    <message>
        <source>The file holds no sound.</source>
        <translation>Die Datei enthält keinen Klang.</translation>
    </message>
    <message>
        <source>The header that was kept is not that of this sample.</source>
        <translation>Der gesicherte Kopf ist nicht der dieses Samples.</translation>
    </message>
    <message>
        <source>The list has %s already, and undo could not tell the two apart.</source>
        <translation>Die Liste hat %s schon, und beim Zurücknehmen ließen sich die beiden nicht unterscheiden.</translation>
    </message>
    <message>
        <source>The list has %s more than once, and undo could not tell which of them it was.</source>
        <translation>Die Liste hat %s mehr als einmal, und beim Zurücknehmen wäre nicht bekannt, welches es war.</translation>
    </message>
    <message>
        <source>The loaded sampler&apos;s answers</source>
        <translation>Antworten des geladenen Samplers</translation>
    </message>
    <message>
        <source>The loop begins with the sample, so there is nothing in front of it to fade into.</source>
        <translation>Der Loop beginnt mit dem Sample; darum steht nichts davor, in das sich überblenden ließe.</translation>
    </message>
    <message>
        <source>The loop stands there already.</source>
        <translation>Der Loop steht schon dort.</translation>
    </message>
    <message>
        <source>The loop would end behind the sample.</source>
        <translation>Der Loop würde hinter dem Sample enden.</translation>
    </message>
    <message>
        <source>The message of %s: %s, %s.%s</source>
        <translation>Die Meldung mit %s: %s, %s.%s</translation>
    </message>
    <message>
        <source>The message of %s: %s.%s</source>
        <translation>Die Meldung mit %s: %s.%s</translation>
    </message>
    <message>
        <source>The recording ended: %s What there is lies in %s.</source>
        <translation>Die Aufzeichnung ist zu Ende: %s Was es gibt, liegt in %s.</translation>
    </message>
    <message>
        <source>The sample fits %s as it is.</source>
        <translation>Das Sample passt zu %s, wie es ist.</translation>
    </message>
    <message>
        <source>The sample has no loop, so there is no seam to fade.</source>
        <translation>Das Sample hat keinen Loop; darum gibt es keine Naht zum Überblenden.</translation>
    </message>
    <message>
        <source>The sample has no loop.</source>
        <translation>Das Sample hat keinen Loop.</translation>
    </message>
    <message>
        <source>The sample is as loud as it can be already.</source>
        <translation>Das Sample ist schon so laut, wie es sein kann.</translation>
    </message>
    <message>
        <source>The sample is silent, so there is nothing to make louder.</source>
        <translation>Das Sample ist still; darum gibt es nichts lauter zu machen.</translation>
    </message>
    <message>
        <source>The sampler did not answer</source>
        <translation>Der Sampler hat nicht geantwortet</translation>
    </message>
    <message>
        <source>The sampler did not answer. %1</source>
        <translation>Der Sampler hat nicht geantwortet. %1</translation>
    </message>
    <message>
        <source>The sampler did not send all of it.</source>
        <translation>Der Sampler hat nicht alles gesendet.</translation>
    </message>
    <message>
        <source>The sampler did not take %s back.</source>
        <translation>Der Sampler hat %s nicht wieder angenommen.</translation>
    </message>
    <message>
        <source>The sampler does not list %s, so it did not take it back.</source>
        <translation>Der Sampler führt %s nicht auf; er hat es also nicht wieder angenommen.</translation>
    </message>
    <message>
        <source>The sampler has a %s again.</source>
        <translation>Der Sampler hat wieder ein %s.</translation>
    </message>
    <message>
        <source>The sampler has a sample called &apos;%s&apos; already, and would call &apos;%s&apos; the same: it would hold two of that name.
Upload it all the same?</source>
        <translation>Der Sampler hat schon ein Sample namens &apos;%s&apos; und würde &apos;%s&apos; ebenso nennen: Er enthielte zwei dieses Namens.
Trotzdem senden?</translation>
    </message>
    <message>
        <source>The self-test has found nothing to keep.</source>
        <translation>Der Selbsttest hat nichts gefunden, das sich festhalten ließe.</translation>
    </message>
    <message>
        <source>The self-test has found trouble.</source>
        <translation>Der Selbsttest hat Fehler gefunden.</translation>
    </message>
    <message>
        <source>The self-test is through.</source>
        <translation>Der Selbsttest ist durchgelaufen.</translation>
    </message>
    <message>
        <source>The self-test was stopped.</source>
        <translation>Der Selbsttest wurde angehalten.</translation>
    </message>
    <message>
        <source>The settings could not be written.</source>
        <translation>Die Einstellungen ließen sich nicht schreiben.</translation>
    </message>
    <message>
        <source>The sound of [%s] was uploaded, but the sampler did not take its pitch, loop, play mode and tuning.</source>
        <translation>Der Klang von [%s] wurde gesendet, aber der Sampler hat Tonhöhe, Loop, Spielart und Stimmung nicht angenommen.</translation>
    </message>
    <message>
        <source>The system names no folder for this user&apos;s data. Is HOME set?</source>
        <translation>Das System nennt keinen Ordner für die Daten dieses Benutzers. Ist HOME gesetzt?</translation>
    </message>
    <message>
        <source>The text of this step cannot be used. %s</source>
        <translation>Der Text dieses Schritts lässt sich nicht verwenden. %s</translation>
    </message>
    <message>
        <source>The transcript is %s.</source>
        <translation>Die Aufzeichnung ist %s.</translation>
    </message>
    <message>
        <source>The upload was stopped and the sampler told to forget it. The sample [%s] that the sampler had in this place is gone: upload it again, or delete what is left of it.</source>
        <translation>Der Upload wurde angehalten, und der Sampler weiß, dass er ihn vergessen soll. Das Sample [%s], das der Sampler an dieser Stelle hatte, ist weg: Senden Sie es noch einmal, oder löschen Sie, was davon übrig ist.</translation>
    </message>
    <message>
        <source>The upload was stopped and the sampler told to forget it.</source>
        <translation>Der Upload wurde angehalten, und der Sampler weiß, dass er ihn vergessen soll.</translation>
    </message>
    <message>
        <source>There is nothing to put back on the sampler.</source>
        <translation>Auf dem Sampler gibt es nichts zurückzunehmen.</translation>
    </message>
    <message>
        <source>These options do not convert it. Choose Keep original for the channels.</source>
        <translation>Diese Optionen konvertieren es nicht. Wählen Sie bei den Kanälen Keep original.</translation>
    </message>
    <message>
        <source>This file tells nothing to samplers, so there is no place for a loop. Import it first.</source>
        <translation>Diese Datei sagt Samplern nichts; darum ist in ihr kein Platz für einen Loop. Importieren Sie sie zuerst.</translation>
    </message>
    <message>
        <source>This was kept of &apos;%s&apos;, a %s, and another sampler is loaded.</source>
        <translation>Dies wurde von &apos;%s&apos; gesichert, einem %s, und ein anderer Sampler ist geladen.</translation>
    </message>
    <message>
        <source>Time left</source>
        <translation>Restzeit</translation>
    </message>
    <message>
        <source>Traffic is being recorded already.</source>
        <translation>Der Verkehr wird schon aufgezeichnet.</translation>
    </message>
    <message>
        <source>Traffic is being recorded.</source>
        <translation>Der Verkehr wird aufgezeichnet.</translation>
    </message>
    <message>
        <source>Trim</source>
        <translation>Zuschneiden</translation>
    </message>
    <message>
        <source>Type how many decibels louder (6) or softer (-6) it is to be, up to 60.</source>
        <translation>Geben Sie ein, wie viele Dezibel lauter (6) oder leiser (-6) es werden soll, bis 60.</translation>
    </message>
    <message>
        <source>Type how many milliseconds the fade is to take, from 0.1 to 10000.</source>
        <translation>Geben Sie ein, wie viele Millisekunden die Überblendung dauern soll, von 0.1 bis 10000.</translation>
    </message>
    <message>
        <source>Undo makes it anew from the parameters that this program reads; everything else in it comes back as the sampler presets it.</source>
        <translation>Beim Zurückholen entsteht es neu aus den Parametern, die dieses Programm liest; alles andere darin kommt so zurück, wie es der Sampler voreinstellt.</translation>
    </message>
    <message>
        <source>Uploaded the sample %s</source>
        <translation>Sample gesendet: %s</translation>
    </message>
    <message>
        <source>Uploading</source>
        <translation>Senden</translation>
    </message>
    <message>
        <source>Use from now on</source>
        <translation>Ab jetzt so senden</translation>
    </message>
    <message>
        <source>VELMOR History</source>
        <translation>VELMOR Verlauf</translation>
    </message>
    <message>
        <source>VELMOR Interface self-test</source>
        <translation>VELMOR Selbsttest der Schnittstelle</translation>
    </message>
    <message>
        <source>Velocity:</source>
        <translation>Anschlagstärke:</translation>
    </message>
    <message>
        <source>Waveform: %1</source>
        <translation>Wellenform: %1</translation>
    </message>
    <message>
        <source>Way:</source>
        <translation>Weg:</translation>
    </message>
    <message>
        <source>What became of each message</source>
        <translation>Was aus jeder Meldung wurde</translation>
    </message>
    <message>
        <source>What became of it</source>
        <translation>Was daraus wurde</translation>
    </message>
    <message>
        <source>What sends back what is sent</source>
        <translation>Was zurücksendet, was gesendet wird</translation>
    </message>
    <message>
        <source>What the sampler holds could not be kept first: %s
Go on without a copy? It cannot be put back then.</source>
        <translation>Was der Sampler enthält, ließ sich nicht zuerst sichern: %s
Ohne Kopie fortfahren? Es lässt sich dann nicht zurückholen.</translation>
    </message>
    <message>
        <source>What was changed, the newest first</source>
        <translation>Was geändert wurde, das Neueste zuerst</translation>
    </message>
    <message>
        <source>What</source>
        <translation>Was</translation>
    </message>
    <message>
        <source>When</source>
        <translation>Wann</translation>
    </message>
    <message>
        <source>Where the steps of this sampler lie</source>
        <translation>Wo die Schritte dieses Samplers liegen</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>Vergrößern</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>Verkleinern</translation>
    </message>
    <message>
        <source>[%s], line %d: %s</source>
        <translation>[%s], Zeile %d: %s</translation>
    </message>
    <message>
        <source>about %d min</source>
        <translation>etwa %d min</translation>
    </message>
    <message>
        <source>about %d s</source>
        <translation>etwa %d s</translation>
    </message>
    <message>
        <source>all but the left channel (choose 1 Channel and Create L/R files for both)</source>
        <translation>alles außer dem linken Kanal (1 Channel und Create L/R files geben beide)</translation>
    </message>
    <message>
        <source>answered %s</source>
        <translation>Antwort %s</translation>
    </message>
    <message>
        <source>arrives as %.02f s, the second half silent</source>
        <translation>kommt als %.02f s an, die zweite Hälfte still</translation>
    </message>
    <message>
        <source>arrives as long as it is</source>
        <translation>kommt so lang an, wie es ist</translation>
    </message>
    <message>
        <source>beginning of the loop</source>
        <translation>Anfang des Loops</translation>
    </message>
    <message>
        <source>byte %zu: %s, not %s</source>
        <translation>Byte %zu: %s statt %s</translation>
    </message>
    <message>
        <source>change</source>
        <translation>verändert</translation>
    </message>
    <message>
        <source>changed the program %s</source>
        <translation>Programm geändert: %s</translation>
    </message>
    <message>
        <source>delay</source>
        <translation>verspätet</translation>
    </message>
    <message>
        <source>deleted the program %s</source>
        <translation>Programm gelöscht: %s</translation>
    </message>
    <message>
        <source>deleted the sample %s</source>
        <translation>Sample gelöscht: %s</translation>
    </message>
    <message>
        <source>doubled</source>
        <translation>doppelt</translation>
    </message>
    <message>
        <source>end of the loop</source>
        <translation>Ende des Loops</translation>
    </message>
    <message>
        <source>end</source>
        <translation>Ende</translation>
    </message>
    <message>
        <source>it does not loop any more.</source>
        <translation>der Loop ist weg.</translation>
    </message>
    <message>
        <source>it loops from start to end.</source>
        <translation>der Loop geht von Anfang bis Ende.</translation>
    </message>
    <message>
        <source>its loudest value is full scale.</source>
        <translation>der lauteste Wert ist Vollaussteuerung.</translation>
    </message>
    <message>
        <source>kept as they are</source>
        <translation>wie sie sind</translation>
    </message>
    <message>
        <source>loaded</source>
        <translation>geladen</translation>
    </message>
    <message>
        <source>loss</source>
        <translation>Verlust</translation>
    </message>
    <message>
        <source>no answer %s</source>
        <translation>keine Antwort %s</translation>
    </message>
    <message>
        <source>no sampler loaded</source>
        <translation>kein Sampler geladen</translation>
    </message>
    <message>
        <source>no</source>
        <translation>nein</translation>
    </message>
    <message>
        <source>noise</source>
        <translation>Rauschen</translation>
    </message>
    <message>
        <source>nothing</source>
        <translation>nichts</translation>
    </message>
    <message>
        <source>pass</source>
        <translation>heil</translation>
    </message>
    <message>
        <source>refused: %s</source>
        <translation>abgelehnt: %s</translation>
    </message>
    <message>
        <source>renamed the program %s</source>
        <translation>Programm umbenannt: %s</translation>
    </message>
    <message>
        <source>renamed the sample %s</source>
        <translation>Sample umbenannt: %s</translation>
    </message>
    <message>
        <source>silence</source>
        <translation>Stille</translation>
    </message>
    <message>
        <source>start</source>
        <translation>Anfang</translation>
    </message>
    <message>
        <source>the MIDI output</source>
        <translation>den MIDI-Ausgang</translation>
    </message>
    <message>
        <source>the import options</source>
        <translation>die Import-Optionen</translation>
    </message>
    <message>
        <source>the last %.1f ms of its loop lead into its beginning.</source>
        <translation>die letzten %.1f ms des Loops führen in seinen Anfang.</translation>
    </message>
    <message>
        <source>the loop was moved.</source>
        <translation>der Loop wurde verschoben.</translation>
    </message>
    <message>
        <source>two files: %s</source>
        <translation>zwei Dateien: %s</translation>
    </message>
    <message>
        <source>uploaded the sample %s</source>
        <translation>Sample gesendet: %s</translation>
    </message>
    <message>
        <source>what is above %u Hz (%u Hz is chosen)</source>
        <translation>was über %u Hz liegt (%u Hz ist gewählt)</translation>
    </message>
    <message>
        <source>what was outside start and end was cut.</source>
        <translation>was außerhalb von Anfang und Ende lag, wurde abgeschnitten.</translation>
    </message>
    <message>
        <source>with exact length %s</source>
        <translation>mit genauer Länge %s</translation>
    </message>
    <message>
        <source>without exact length %s</source>
        <translation>ohne genaue Länge %s</translation>
    </message>
    <message>
        <source>yes</source>
        <translation>ja</translation>
    </message>
    <message>
        <source>%s goes from the sampler. Keep a copy first? %s
The answer holds until VELMOR is closed.</source>
        <translation>%s geht vom Sampler. Zuerst eine Kopie sichern? %s
Die Antwort gilt, bis VELMOR beendet wird.</translation>
    </message>
    <message>
        <source>The sampler did not do it: %s is gone, and no program has the new name.</source>
        <translation>Der Sampler hat es nicht getan: %s ist weg, und kein Programm hat den neuen Namen.</translation>
    </message>
</context>
</TS>
