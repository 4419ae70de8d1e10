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

    // Of the codes that a fetched entry may have, the one that it says; else all of them.
    function entryAmong(codes, entry) {
        return codes.filter(function (code) {
            return code.toLowerCase().replace(/^pdb_0000/, '') === entry.toLowerCase();
        })[0] || codes.join(' or ');
    }

    // Makes a structure the current one: {path, name, macromolecular, scattering, fileIsKnown}, and
    // codes, those under which it may have been fetched. Its summary follows: null if the working copy
    // cannot be looked at.
    function take(structure) {
        say('note', '');
        state.structure = structure;
        Vexa.workingCopy.look(function (summary) {
            if (structure === state.structure) {
                structure.summary = summary;
                if (summary && structure.codes && structure.codes.length) {
                    structure.name = entryAmong(structure.codes, summary.entry);
                }
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
        Vexa.destination.suggestScattering(structure.scattering);
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
            'No CIF was taken: the dialog was closed, or the file cannot be read or copied.'});
    }

    // What to say when a file that can be read was not taken.
    function notCopied(name) {
        return {kind: 'error', text: name + ' could not be copied. ' +
            'Is the disk full, or your home folder write-protected?'};
    }

    function takeRecent(path) {
        var name = rules.shortName(rules.fileName(path));
        var answer = bridge.takeCif(path);
        takeAnswer(answer, notCopied(name));
        if (!answer) {
            Vexa.fileText.read(Vexa.fileText.urlOf(path), 1, function () {}, function () {
                Vexa.recent.remove(path);
                say('error', name + ' cannot be read any more; it is off the list now.');
                Vexa.render();
                if (document.activeElement === document.body) {
                    view.element('choose-cif').focus(); // the list's button is gone with its last file
                }
            });
        }
    }

    function refuse(text) {
        say('doubt', text);
        Vexa.render();
    }

    // Why no file can be taken at this moment.
    function dropProblem() {
        return rules.busyProblem(state) || (Vexa.dialog.isOpen() ? 'Close this first.' : '');
    }

    // A file that was dropped on the window, or that the program was given at its start.
    function takeDropped(path) {
        var name = rules.shortName(rules.fileName(path));
        if (!state.connected) {
            early = path;
        } else if (dropProblem()) {
            refuse('Not taken: ' + dropProblem());
        } else if (path === '') {
            refuse('Only a CIF can be dropped here, one at a time.');
        } else {
            Vexa.fileText.read(Vexa.fileText.urlOf(path), rules.enoughToKnowACif, function (text) {
                var problem = rules.cifProblem(text);
                if (problem) {
                    refuse(name + ' is not a CIF: ' + problem);
                } else {
                    takeChecked(path, name);
                }
            }, function () {
                refuse(name + ' cannot be read. Is it there, and is it a file?');
            });
        }
    }

    // Something else may have begun while the file was looked at.
    function takeChecked(path, name) {
        if (dropProblem()) {
            refuse(name + ' was not taken: ' + dropProblem());
        } else {
            takeAnswer(bridge.takeCif(path), notCopied(name));
        }
    }

    // Something is dragged over the window, or no longer.
    function showDrag(isOver) {
        view.element('page').setAttribute('data-drag', isOver && !dropProblem() ? 'over' : '');
    }

    function askToSave() {
        var structure = state.structure;
        Vexa.dialog.open({
            title: 'Write back to ' + structure.name + '?',
            lines: [
                'What the file holds now is replaced by the copy that Vexa Word works on, ' +
                    'in UTF-8 and with Unix line ends:',
                structure.path
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
        view.element('structure-details').disabled =
            !state.structure || !state.structure.summary || state.making;
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
        choose: choose, takeDropped: takeDropped, showDrag: showDrag};
}());

// Called by the window by this name: a path, or an empty text for anything but one local file.
function fileDropped(path) {
    'use strict';
    Vexa.structure.takeDropped(path);
}

// Called by the window by this name while something is dragged over it.
function fileOver(isOver) {
    'use strict';
    Vexa.structure.showDrag(isOver);
}
