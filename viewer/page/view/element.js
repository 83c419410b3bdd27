function element(selector) {
    return document.querySelector(selector);
}

function make(tag, text = "", properties = {}) {
    return Object.assign(document.createElement(tag), { textContent: text }, properties);
}
