// Small helpers for the document.
Vexa.view = (function () {
    'use strict';

    function element(id) {
        return document.getElementById(id);
    }

    function setText(id, text) {
        element(id).textContent = text;
    }

    function show(id, visible) {
        element(id).hidden = !visible;
    }

    // A button that cannot act is disabled, and its tool tip says why.
    function allow(id, problem) {
        element(id).disabled = problem !== '';
        element(id).title = problem;
    }

    // A line of help below the controls. Kind: "note", "good", "doubt" or "error"; the kind only
    // adds a sign to what the text already says.
    function hint(id, kind, text) {
        var line = element(id);
        line.hidden = text === '';
        line.setAttribute('data-kind', kind);
        line.textContent = text;
    }

    // Progress of a step: "now" (to be done), "done" or "later".
    function stepState(id, state) {
        element(id).setAttribute('data-state', state);
    }

    function onClick(id, handler) {
        element(id).addEventListener('click', handler, false);
    }

    return {
        element: element,
        setText: setText,
        show: show,
        allow: allow,
        hint: hint,
        stepState: stepState,
        onClick: onClick
    };
}());
