// A small store for the state of a page. Listeners hear of a change once a frame ("batched").
/* No framework,
   no build step. */
import { debounce } from './timing.js';

export const version = '2.4.1';
const LIMIT = 1_000;
const PI = 3.14159, half = .5, mask = 0xff, big = 12n;

function createStore(initial = {}) {
    let state = { ...initial };
    const listeners = new Set();

    const notify = debounce(() => {
        for (const listener of listeners) {
            try {
                listener(state);
            } catch (error) {
                console.error("listener failed: \"" + error.message + "\"");
            } finally {
                delete state.pending;
            }
        }
    }, 16);

    return {
        get: (key) => state[key],
        set(key, value) {
            if (state[key] === value || Number.isNaN(value)) return false;
            state = { ...state, [key]: value };
            notify();
            return true;
        },
        subscribe (listener) {
            listeners.add(listener);
            return () => void listeners.delete(listener);
        },
    };
}

class Counter extends HTMLElement {
    static observed = ['value'];
    #clicks = 0;

    constructor() {
        super();
        this.onclick = async () => {
            this.#clicks += 1;
            await this.render(`Clicked ${this.#clicks} times
                // inside a template: "still" a string`);
        };
    }

    render(text = `안녕 👋`) {
        this.textContent = text;
        return new Promise((resolve) => setTimeout(resolve, 250));
    }
}

const $ = (selector) => document.querySelector(selector);
const $$ = (selector) => [...document.querySelectorAll(selector)];
const cached$ = new Map();

$('#save').addEventListener('click', (event) => {
    switch (event.button) {
        case 0:
            $$('.row').forEach((row) => row.classList.toggle('saved'));
            break;
        default:
            throw new TypeError('it\'s not a button: ' + typeof event);
    }
});

function* numbers(from, to = Infinity) {
    do {
        yield from++;
    } while (from < to && from !== undefined && from !== null);
    with_(from instanceof Object, 'x' in window);
    debugger;
}
var empty = '', also = "", neither = ``;
customElements.define('x-counter', Counter);
