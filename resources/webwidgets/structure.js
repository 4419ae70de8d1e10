// Step 1: choosing, fetching and writing back the CIF.
Vexa.structure = (function () {
    'use strict';

    var rules = Vexa.rules;
    var view = Vexa.view;
    var bridge = Vexa.bridge;
    var state = null;

    // Outcome of the last action, shown until the next: {kind, text}.
    var message = null;

    // Fetches whose answers are still to come. An answer does not say which fetch it belongs to, so
    // as long as several are under way each of their codes may be the one.
    var awaited = {codes: [], count: 0};
    var seconds = 0;
    var clock = null;

    function say(kind, text) {
        message = {kind: kind, text: text};
    }

    function choose() {
        var answer = bridge.chooseCif();
        if (answer) {
            message = null;
            state.structure = {
                path: answer.path,
                name: rules.shortName(rules.fileName(answer.path)),
                macromolecular: answer.macromolecular,
                scattering: false,
                fileIsKnown: true
            };
        } else {
            if (state.structure) {
                // The program has let go of the file's path, or holds that of an unreadable one.
                state.structure.fileIsKnown = false;
            }
            say('note', state.structure ?
                'No other CIF taken. ' + rules.fileProblem(state.structure) :
                'No CIF was taken: the dialog was closed, or the file cannot be read.');
        }
        Vexa.render();
    }

    function fetchTyped(event) {
        var identifier = rules.readIdentifier(view.element('identifier').value);
        event.preventDefault();
        if (rules.busyProblem(state)) {
            return;
        }
        if (identifier.problem) {
            say('doubt', identifier.problem);
            Vexa.render();
            view.element('identifier').focus();
            return;
        }
        message = null;
        awaited.codes.push(identifier.code);
        awaited.count += 1;
        state.waitingFor = identifier;
        seconds = 0;
        clock = setInterval(tick, 1000);
        Vexa.render();
        view.element('stop-waiting').focus();
        bridge.fetchCif(identifier.code);
    }

    function tick() {
        seconds += 1;
        renderWaiting();
    }

    // The program cannot take a request back, so this ends the waiting only.
    function stopWaiting() {
        var code = state.waitingFor.code;
        endWaiting();
        say('note', 'No longer waiting for ' + code +
            '. Should it still arrive, it becomes the current CIF.');
        Vexa.render();
        view.element('identifier').focus();
    }

    function endWaiting() {
        clearInterval(clock);
        clock = null;
        state.waitingFor = null;
    }

    // Takes one answer off the list and tells which codes it may belong to.
    function answeredCodes() {
        var codes = awaited.codes;
        awaited.count = Math.max(0, awaited.count - 1);
        if (awaited.count === 0) {
            awaited.codes = [];
        }
        return codes;
    }

    // Called by the program, once for each fetch that ends.
    function onAnswer(answer) {
        var waitedFor = state.waitingFor;
        var codes = answeredCodes();
        endWaiting();
        if (answer === 'OK') {
            takeFetched(codes);
            message = null;
            if (!waitedFor) {
                say('note', state.structure.name +
                    ' has arrived after all and is now the current CIF.');
            }
        } else if (waitedFor) {
            say('error', 'No usable CIF came back for ' + waitedFor.code +
                '. Is the code right, and the computer online?');
        }
        Vexa.render();
        if (waitedFor && !Vexa.dialog.isOpen()) {
            view.element(answer === 'OK' ? 'journal' : 'identifier').focus();
        }
    }

    function takeFetched(codes) {
        state.structure = {
            path: '',
            name: codes.join(' or ') || 'Fetched entry',
            macromolecular: true, // nothing else is accepted by the program
            scattering: codes.length > 0 && codes.every(function (code) {
                return Boolean(rules.readIdentifier(code).scattering);
            }),
            fileIsKnown: false
        };
        view.element('identifier').value = '';
        if (state.structure.scattering) {
            Vexa.destination.suggestScattering();
        }
    }

    function askToSave() {
        var structure = state.structure;
        Vexa.dialog.open({
            title: 'Write back to ' + structure.name + '?',
            lines: [
                structure.path,
                'What the file holds now is replaced by the copy that Vexa Word works on.'
            ],
            accept: 'Write back',
            onAccept: function () {
                save(structure);
            }
        });
    }

    function save(structure) {
        if (structure !== state.structure) {
            // A late answer of a fetch has come while the question stood.
            say('note', 'Nothing was written back: ' + state.structure.name +
                ' has arrived and is now the current CIF.');
        } else if (bridge.saveCif()) {
            say('good', 'Written back to ' + structure.name + '.');
        } else {
            say('error', structure.name + ' could not be written. ' +
                'Is the file or its folder write-protected, or the disk full?');
        }
        Vexa.render();
    }

    // The page of this web engine learns a dropped file's name but not where it is.
    function refuseDrop(event) {
        event.preventDefault();
        if (event.type === 'drop' && !rules.busyProblem(state)) {
            say('note', 'Files cannot be dropped here: use “Choose CIF…”.');
            Vexa.render();
        }
    }

    function factsOf(structure) {
        var kind = 'Small-molecule or other CIF';
        if (structure.scattering) {
            kind = 'Small-angle scattering CIF';
        } else if (structure.macromolecular) {
            kind = 'Macromolecular CIF';
        }
        return kind + ', ' + (structure.path ? 'in ' + rules.folderName(structure.path) : 'fetched');
    }

    function renderWaiting() {
        var waiting = state.waitingFor;
        view.show('fetch-progress', Boolean(waiting));
        if (waiting) {
            view.setText('fetch-text', 'Fetching ' + waiting.code + '…' +
                (seconds > 1 ? ' ' + seconds + ' s' : '') +
                (seconds >= 30 ? ' – no answer yet' : ''));
        }
    }

    function renderHint() {
        if (state.waitingFor) {
            view.hint('structure-hint', 'note', '');
        } else if (message) {
            view.hint('structure-hint', message.kind, message.text);
        } else {
            view.hint('structure-hint', 'note', state.structure ?
                rules.fileProblem(state.structure) :
                'From your disk, or from the data banks.');
        }
    }

    function render() {
        var structure = state.structure;
        var busy = rules.busyProblem(state);
        view.allow('choose-cif', busy);
        view.allow('fetch-cif', busy);
        view.element('identifier').disabled = busy !== '';
        view.allow('stop-waiting', state.making ? busy : '');
        view.allow('save-cif', rules.saveProblem(state));
        view.show('structure-card', Boolean(structure));
        if (structure) {
            view.setText('structure-name', structure.name);
            view.setText('structure-facts', factsOf(structure));
            view.element('structure-facts').title = structure.path;
        }
        renderWaiting();
        renderHint();
        view.stepState('step-structure', structure ? 'done' : 'now');
    }

    function start(sharedState) {
        state = sharedState;
        view.onClick('choose-cif', choose);
        view.element('structure-form').addEventListener('submit', fetchTyped, false);
        view.onClick('stop-waiting', stopWaiting);
        view.onClick('save-cif', askToSave);
        document.addEventListener('dragover', refuseDrop, false);
        document.addEventListener('drop', refuseDrop, false);
    }

    return {start: start, render: render, onAnswer: onAnswer};
}());

// Called by the program by this name.
function pdbResponse(message) {
    'use strict';
    Vexa.structure.onAnswer(message);
}
