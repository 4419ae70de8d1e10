// Step 1: taking a CIF from the disk, and writing it back.
Vexa.structure = (function () {
    'use strict';

    var rules = Vexa.rules;
    var view = Vexa.view;
    var bridge = Vexa.bridge;
    var state = null;

    // Outcome of the last action, shown until the next: {kind, text}. No text: nothing to say.
    var message = {kind: 'note', text: ''};

    // A file that was handed over before the program was there.
    var early = null;

    function say(kind, text) {
        message = {kind: kind, text: text};
    }

    // Makes a structure the current one: {path, name, macromolecular, scattering, fileIsKnown}. Its
    // summary follows: null if the working copy cannot be looked at.
    function take(structure) {
        say('note', '');
        state.structure = structure;
        Vexa.workingCopy.look(function (summary) {
            if (structure === state.structure) {
                structure.summary = summary;
                noticeScattering(structure);
                Vexa.render();
            }
        });
        noticeScattering(structure);
    }

    function noticeScattering(structure) {
        if (structure.summary && structure.summary.kind === 'scattering') {
            structure.scattering = true;
        }
        if (structure.scattering) {
            Vexa.destination.suggestScattering();
        }
    }

    // What setCif has answered to a choice; problem: what to say when it took nothing.
    function takeAnswer(answer, problem) {
        if (answer) {
            take({
                path: answer.path,
                name: rules.fileName(answer.path),
                macromolecular: answer.macromolecular,
                scattering: false,
                fileIsKnown: true
            });
            Vexa.recent.add(answer.path);
        } else {
            if (state.structure) {
                // The program has let go of the file's path, or holds that of an unreadable one.
                state.structure.fileIsKnown = false;
            }
            say(problem.kind, problem.text + (state.structure ? ' ' + rules.fileProblem(state.structure) : ''));
        }
        Vexa.render();
    }

    function choose() {
        takeAnswer(bridge.chooseCif(), {kind: 'note', text: state.structure ? 'No other CIF taken.' :
            'No CIF was taken: the dialog was closed, or the file cannot be read.'});
    }

    function takeRecent(path) {
        var answer = bridge.takeCif(path);
        if (!answer) {
            Vexa.recent.remove(path);
        }
        takeAnswer(answer, {kind: 'error',
            text: rules.fileName(path) + ' cannot be read any more; it is off the list now.'});
    }

    function refuse(text) {
        say('doubt', text);
        Vexa.render();
    }

    // A file that was dropped on the window, or that the program was given at its start.
    function takeDropped(path) {
        var name = rules.shortName(rules.fileName(path));
        if (!state.connected) {
            early = path;
        } else if (state.waitingFor) {
            refuse('Not taken: still waiting for ' + state.waitingFor.code + '.');
        } else if (!rules.busyProblem(state) && !Vexa.dialog.isOpen()) {
            if (path === '') {
                refuse('Only a CIF can be dropped here, one at a time.');
                return;
            }
            Vexa.fileText.read(Vexa.fileText.urlOf(path), rules.enoughToKnowACif, function (text) {
                if (rules.looksLikeCif(text)) {
                    takeChecked(path, name);
                } else {
                    refuse(name + ' is not a CIF: there is no data block in it.');
                }
            }, function () {
                refuse(name + ' cannot be read: only a CIF can be taken.');
            });
        }
    }

    // Something else may have begun while the file was looked at.
    function takeChecked(path, name) {
        if (!rules.busyProblem(state) && !Vexa.dialog.isOpen()) {
            takeAnswer(bridge.takeCif(path), {kind: 'error', text: name + ' cannot be read.'});
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
        var name = rules.shortName(structure.name);
        if (structure !== state.structure) {
            // A late answer of a fetch has come while the question stood.
            say('note', 'Nothing was written back: ' + state.structure.name +
                ' has arrived and is now the current CIF.');
        } else if (bridge.saveCif()) {
            say('good', 'Written back to ' + name + '.');
        } else {
            say('error', name + ' could not be written. ' +
                'Is the file or its folder write-protected, or the disk full?');
        }
        Vexa.render();
    }

    function renderHint() {
        if (state.waitingFor && message.kind === 'note') {
            view.hint('structure-hint', 'note', '');
        } else if (message.text) {
            view.hint('structure-hint', message.kind, message.text);
        } else {
            view.hint('structure-hint', 'note', state.structure ?
                rules.fileProblem(state.structure) :
                'A file of yours – drop it here if you like – or an entry of the data banks.');
        }
    }

    function render() {
        var busy = rules.busyProblem(state);
        view.allow('choose-cif', busy);
        view.allow('save-cif', rules.saveProblem(state));
        Vexa.recent.render(busy);
        Vexa.card.render(state.structure);
        renderHint();
        view.stepState('step-structure', state.structure ? 'done' : 'now');
    }

    // Once the program is there.
    function connected() {
        var path = early;
        early = null;
        if (path !== null) {
            takeDropped(path);
        }
    }

    function start(sharedState) {
        state = sharedState;
        view.onClick('choose-cif', choose);
        view.onClick('save-cif', askToSave);
        Vexa.recent.start(takeRecent);
    }

    return {start: start, connected: connected, render: render, take: take, say: say,
        choose: choose, takeDropped: takeDropped};
}());

// Called by the window by this name: a path, or an empty text for anything but one local file.
function fileDropped(path) {
    'use strict';
    Vexa.structure.takeDropped(path);
}

// Called by the window by this name while something is dragged over it.
function fileOver(isOver) {
    'use strict';
    Vexa.view.element('page').setAttribute('data-drag', isOver ? 'over' : '');
}
