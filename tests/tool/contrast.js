// Returns the texts of the page that contrast with what is behind them by less than 4.5 (WCAG 2, level AA).
(() => {
    const channels = (colour) => colour.match(/[\d.]+/g).map(Number);
    const linear = (value) => (value / 255 <= 0.03928 ? value / 255 / 12.92 : ((value / 255 + 0.055) / 1.055) ** 2.4);
    const luminance = ([red, green, blue]) => 0.2126 * linear(red) + 0.7152 * linear(green) + 0.0722 * linear(blue);
    const background = (element) => {
        for (; element; element = element.parentElement) {
            const colour = channels(getComputedStyle(element).backgroundColor);
            if (colour.length === 3 || colour[3] === 1) return colour;
        }
        return [255, 255, 255];
    };
    const contrast = (one, other) => {
        const [dark, light] = [luminance(one), luminance(other)].sort((a, b) => a - b);
        return (light + 0.05) / (dark + 0.05);
    };
    const low = [];
    for (const element of document.querySelectorAll("body *")) {
        const hasText = [...element.childNodes].some((node) => node.nodeType === 3 && node.textContent.trim());
        if (!hasText) continue;
        const ratio = contrast(channels(getComputedStyle(element).color), background(element));
        if (ratio < 4.5) low.push(`${element.textContent}: ${ratio}`);
    }
    return low;
})()
