// Step 2: journal, article category and, where it is offered, small-angle scattering.
Vexa.destination = (function () {
    'use strict';

    var view = Vexa.view;
    var state = null;
    var scatteringWanted = false; // the box as the user left it, whatever a structure suggests

    function addOption(select, value, label) {
        var option = document.createElement('option');
        option.value = value;
        option.textContent = label;
        select.appendChild(option);
    }

    function named(list, name) {
        return list.filter(function (item) {
            return item.name === name;
        })[0] || null;
    }

    // The heading is an option of its own: the engine indents what is in an <optgroup>, and then its
    // list finds nothing any more by the letters that are typed.
    function addJournals(heading, isMember) {
        var select = view.element('journal');
        addOption(select, '', '— ' + heading + ' —');
        select.lastChild.disabled = true;
        VexaJournals.filter(isMember).forEach(function (journal) {
            addOption(select, journal.name, journal.name + ' – ' + journal.about);
        });
    }

    function fillJournals() {
        addOption(view.element('journal'), '', 'Choose a journal…');
        addJournals('From your CIF, or a template', function (journal) {
            return journal.generates !== 'nothing';
        });
        addJournals('Ready-made template only', function (journal) {
            return journal.generates === 'nothing';
        });
    }

    function fillCategories() {
        var select = view.element('category');
        select.textContent = '';
        if (!state.journal) {
            addOption(select, '', 'Choose the journal first');
            return;
        }
        state.journal.categories.forEach(function (category) {
            addOption(select, category.name, category.label);
        });
    }

    // What was chosen last time, as far as it is still offered.
    function restore() {
        var last = Vexa.memory.get('destination');
        if (last && named(VexaJournals, last.journal)) {
            view.element('journal').value = last.journal;
            scatteringWanted = last.scattering === true;
            view.element('sas').checked = scatteringWanted;
            journalChosen();
            if (named(state.journal.categories, last.category)) {
                view.element('category').value = last.category;
                categoryChosen();
            }
        }
    }

    // What the user has chosen, not what a structure suggests.
    function remember() {
        Vexa.memory.set('destination', {
            journal: state.journal ? state.journal.name : '',
            category: state.category ? state.category.name : '',
            scattering: scatteringWanted
        });
    }

    function remembering(action) {
        return function () {
            action();
            remember();
        };
    }

    function journalChosen() {
        state.journal = named(VexaJournals, view.element('journal').value);
        fillCategories();
        categoryChosen();
    }

    function categoryChosen() {
        state.category = state.journal &&
            named(state.journal.categories, view.element('category').value);
        scatteringChosen();
    }

    // The box keeps its tick while it is out of sight, but it only counts where it is offered.
    function scatteringChosen() {
        state.scattering = Boolean(state.category && state.category.scattering &&
            view.element('sas').checked);
        Vexa.render();
    }

    function boxChanged() {
        scatteringWanted = view.element('sas').checked;
        scatteringChosen();
    }

    // A structure of scattering tells which kind of article is meant, any other says nothing.
    function suggestScattering(isScattering) {
        view.element('sas').checked = isScattering || scatteringWanted;
        scatteringChosen();
    }

    // The engine opens a list by mouse only. Blanks belong to what is typed to find an entry.
    function openByKey(event) {
        var press;
        if (event.which === 13 || (event.altKey && event.which === 40)) {
            press = document.createEvent('MouseEvents');
            press.initMouseEvent('mousedown', true, true, window, 1, 0, 0, 0, 0, false, false, false,
                false, 0, null);
            event.preventDefault();
            event.target.dispatchEvent(press);
        }
    }

    function render() {
        var problem = state.making ? Vexa.rules.busyProblem(state) : '';
        view.allow('journal', problem);
        view.allow('category', problem || (state.journal ? '' : 'Choose the journal first.'));
        view.allow('sas', problem);
        view.show('sas-choice', Boolean(state.category && state.category.scattering));
        view.stepState('step-destination',
            state.journal ? 'done' : (state.structure ? 'now' : 'later'));
    }

    function start(sharedState) {
        state = sharedState;
        fillJournals();
        fillCategories();
        view.element('journal').addEventListener('change', remembering(journalChosen), false);
        view.element('category').addEventListener('change', remembering(categoryChosen), false);
        view.element('sas').addEventListener('change', remembering(boxChanged), false);
        view.element('journal').addEventListener('keydown', openByKey, false);
        view.element('category').addEventListener('keydown', openByKey, false);
    }

    return {start: start, restore: restore, render: render, suggestScattering: suggestScattering};
}());
