// Step 3: making the manuscript, or opening a ready-made one.
Vexa.manuscript = (function () {
    'use strict';

    var rules = Vexa.rules;
    var view = Vexa.view;
    var state = null;

    // Outcome of the last action, shown until something else is chosen.
    var message = null;
    var madeWith = '';

    function choices() {
        return [state.journal && state.journal.name, state.category && state.category.name,
            state.scattering, state.structure && state.structure.name].join('\n');
    }

    function say(kind, text) {
        message = {kind: kind, text: text};
        madeWith = choices();
    }

    var marks = 12; // places of the mark that shows that there is life

    // The page gets control about once a second only, too seldom for an animation.
    function showSeconds(name, seconds) {
        view.setText('making-text', 'Reading ' + rules.shortName(name) + '… ' +
            (seconds > 1 ? seconds + ' s. ' : '') +
            'A large structure can take up to three minutes.');
        view.element('making-mark').style.left = (seconds % marks) * 100 / marks + '%';
    }

    // The call below lasts as long as quillet runs; meanwhile the program lets the page's timers
    // run about once a second. If it worked, the window is closed when it returns.
    function make() {
        var started = Date.now();
        var name = state.structure.name; // an entry may arrive meanwhile
        var clock;
        state.making = true;
        message = null;
        showSeconds(name, 0);
        Vexa.render();
        clock = setInterval(function () {
            showSeconds(name, Math.round((Date.now() - started) / 1000));
        }, 500);
        Vexa.bridge.makeManuscript(state.journal.name, state.category.name, state.scattering);
        clearInterval(clock);
        state.making = false;
        say('error', 'No manuscript was made: quillet could not be started. ' +
            'Please install Vexa Word again.');
        Vexa.render();
        view.element('make-manuscript').focus();
    }

    function openTemplate() {
        say('note', 'The template has been handed to the word processor.');
        Vexa.bridge.openTemplate(state.journal.name, state.category.name, state.scattering);
        Vexa.render();
    }

    function result() {
        return 'Opens in the word processor, made from ' + rules.shortName(state.structure.name) + '.';
    }

    function renderHint() {
        var problem = rules.makeProblem(state);
        var doubt = rules.makeDoubt(state);
        if (message && madeWith === choices()) {
            view.hint('manuscript-hint', message.kind, message.text);
        } else if (problem) {
            view.hint('manuscript-hint', 'note', problem);
        } else if (doubt) {
            view.hint('manuscript-hint', 'doubt', doubt);
        } else {
            view.hint('manuscript-hint', 'good', result());
        }
    }

    function render() {
        var ready = state.making || !rules.makeProblem(state) ||
            (!rules.openProblem(state) && !rules.madeFromCif(state));
        view.allow('make-manuscript', rules.makeProblem(state));
        view.allow('open-template', rules.openProblem(state));
        view.show('making', state.making);
        renderHint();
        view.stepState('step-manuscript', ready ? 'now' : 'later');
    }

    function start(sharedState) {
        state = sharedState;
        view.onClick('make-manuscript', make);
        view.onClick('open-template', openTemplate);
    }

    return {start: start, render: render};
}());
