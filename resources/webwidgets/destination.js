// Step 2: journal, article category and, where it is offered, small-angle scattering.
Vexa.destination = (function () {
    'use strict';

    var view = Vexa.view;
    var state = null;

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

    function fillJournals() {
        var select = view.element('journal');
        addOption(select, '', 'Choose a journal…');
        VexaJournals.forEach(function (journal) {
            addOption(select, journal.name, journal.name + ' – ' + journal.about);
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

    // For an entry that tells which kind of article is meant.
    function suggestScattering() {
        view.element('sas').checked = true;
        scatteringChosen();
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
        view.element('journal').addEventListener('change', journalChosen, false);
        view.element('category').addEventListener('change', categoryChosen, false);
        view.element('sas').addEventListener('change', scatteringChosen, false);
    }

    return {start: start, render: render, suggestScattering: suggestScattering};
}());
