// The CIF of an entry of the data banks, by its identifier.
Vexa.retrieval = (function () {
    'use strict';

    var rules = Vexa.rules;
    var view = Vexa.view;
    var state = null;

    // Fetches whose answers are still to come. An answer does not say which fetch it belongs to, so
    // as long as several are under way each of their codes may be the one.
    var awaited = {codes: [], count: 0};
    var seconds = 0;
    var clock = null;

    function fetchTyped(event) {
        var identifier = rules.readIdentifier(view.element('identifier').value);
        event.preventDefault();
        if (rules.busyProblem(state)) {
            return;
        }
        if (identifier.problem) {
            Vexa.structure.say('doubt', identifier.problem);
            Vexa.render();
            view.element('identifier').focus();
            return;
        }
        Vexa.structure.say('note', '');
        if (awaited.codes.indexOf(identifier.code) < 0) {
            awaited.codes.push(identifier.code);
        }
        awaited.count += 1;
        state.waitingFor = identifier;
        seconds = 0;
        clock = setInterval(tick, 1000);
        Vexa.render();
        view.element('stop-waiting').focus();
        Vexa.bridge.fetchCif(identifier.code);
    }

    function tick() {
        seconds += 1;
        render();
    }

    // The program cannot take a request back, so this ends the waiting only.
    function stopWaiting() {
        var code = state.waitingFor.code;
        endWaiting();
        Vexa.structure.say('note', 'No longer waiting for ' + code +
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

    function isScattering(code) {
        return Boolean(rules.readIdentifier(code).scattering);
    }

    function takeFetched(codes) {
        view.element('identifier').value = '';
        Vexa.structure.take({
            path: '',
            name: codes.join(' or ') || 'Fetched entry',
            codes: codes,
            macromolecular: true, // nothing else is accepted by the program
            scattering: codes.length > 0 && codes.every(isScattering),
            fileIsKnown: false
        });
    }

    // Called by the program, once for each fetch that ends.
    function onAnswer(answer) {
        var waitedFor = state.waitingFor;
        var codes = answeredCodes();
        endWaiting();
        if (answer === 'OK') {
            takeFetched(codes);
            if (!waitedFor) {
                Vexa.structure.say('note', state.structure.name +
                    ' has arrived after all and is now the current CIF.');
            }
        } else if (waitedFor) {
            Vexa.structure.say('error', 'No usable CIF came back for ' + codes.join(' or ') +
                '. Is the code right, and the computer online?');
        }
        Vexa.render();
        if (waitedFor && !Vexa.dialog.isOpen()) {
            view.element(answer === 'OK' ? 'journal' : 'identifier').focus();
        }
    }

    function render() {
        var waiting = state.waitingFor;
        var busy = rules.busyProblem(state);
        view.allow('fetch-cif', busy);
        view.element('identifier').disabled = busy !== '';
        view.allow('stop-waiting', state.making ? busy : '');
        view.show('fetch-progress', Boolean(waiting));
        if (waiting) {
            view.setText('fetch-text', 'Fetching ' + waiting.code + '…' +
                (seconds > 1 ? ' ' + seconds + ' s' : '') +
                (seconds >= 30 ? ' – no answer yet' : ''));
        }
    }

    function start(sharedState) {
        state = sharedState;
        view.element('structure-form').addEventListener('submit', fetchTyped, false);
        view.onClick('stop-waiting', stopWaiting);
    }

    return {start: start, render: render, onAnswer: onAnswer};
}());

// Called by the program by this name.
function pdbResponse(message) {
    'use strict';
    Vexa.retrieval.onAnswer(message);
}
