// Small helpers for the document.
Vexa.view = (function () {
    'use strict';

    function element(id) {
        return document.getElementById(id);
    }

    // A new element with a text, of a class; both may be left out.
    function make(tag, className, text) {
        var made = document.createElement(tag);
        made.className = className || '';
        made.textContent = text || '';
        return made;
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
    // adds a sign to what the text already says. What is new and matters comes into sight.
    function hint(id, kind, text) {
        var line = element(id);
        var isNew = line.textContent !== text && (kind === 'error' || kind === 'doubt');
        line.hidden = text === '';
        line.setAttribute('data-kind', kind);
        line.textContent = text;
        if (isNew) {
            line.scrollIntoViewIfNeeded(false);
        }
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
        make: make,
        setText: setText,
        show: show,
        allow: allow,
        hint: hint,
        stepState: stepState,
        onClick: onClick
    };
}());
