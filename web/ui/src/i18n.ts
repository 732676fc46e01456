// Texts in the page's language, from the catalogues the build makes of the
// program's own translations (/assets/lang/<code>.json). A key is
// "Context/source text"; a text without a translation reads as its source.

export const Languages = ["en", "de", "ru", "fr", "es", "ja", "zh_CN"] as const;
export type Language = (typeof Languages)[number];

// Each language's name in itself, for the language menu.
export const LanguageNames: Record<Language, string> = {
    en: "English",
    de: "Deutsch",
    ru: "Русский",
    fr: "Français",
    es: "Español",
    ja: "日本語",
    zh_CN: "简体中文",
};

type Text = string | Record<string, string>;

interface Catalogue {
    language: string;
    plurals: string[];
    texts: Record<string, Text>;
    tasks: Record<string, string>;
}

let catalogue: Catalogue = { language: "en", plurals: ["one", "other"], texts: {}, tasks: {} };
let pluralRules = new Intl.PluralRules("en");

// The first of the browser's languages that the program speaks, by its
// whole tag or its first part ("de-AT" is de, "zh-CN" and "zh" are zh_CN).
export function chooseLanguage(preferred: readonly string[], stored: string | null): Language {
    if (stored && (Languages as readonly string[]).includes(stored))
        return stored as Language;
    for (const tag of preferred) {
        const lower = tag.toLowerCase();
        if (lower === "zh" || lower.startsWith("zh-cn") || lower.startsWith("zh-hans") || lower === "zh-sg")
            return "zh_CN";
        const base = lower.split("-")[0];
        const found = Languages.find((language) => language === base);
        if (found)
            return found;
    }
    return "en";
}

// The tag for the page's lang attribute and Intl: zh_CN is zh-CN.
export function languageTag(language: Language): string {
    return language.replace("_", "-");
}

export async function loadCatalogue(language: Language): Promise<void> {
    const response = await fetch(`/assets/lang/${language}.json`);
    if (!response.ok)
        throw new Error(`catalogue ${language}: HTTP ${response.status}`);
    catalogue = (await response.json()) as Catalogue;
    pluralRules = new Intl.PluralRules(languageTag(language));
}

function sourceOf(key: string): string {
    return key.slice(key.indexOf("/") + 1);
}

// Qt's arg(): %1, %2 ... replaced in one pass, so an argument's own "%2" stays.
export function fill(text: string, args: readonly (string | number)[]): string {
    return text.replace(/%(\d)/g, (whole, digit: string) => {
        const value = args[Number(digit) - 1];
        return value === undefined ? whole : String(value);
    });
}

export function tr(key: string, ...args: (string | number)[]): string {
    const text = catalogue.texts[key];
    return fill(typeof text === "string" && text !== "" ? text : sourceOf(key), args);
}

// A text with %n, in the form the language uses for n.
export function trn(key: string, n: number, ...args: (string | number)[]): string {
    const forms = catalogue.texts[key];
    let text = sourceOf(key);
    if (forms && typeof forms === "object") {
        const category = pluralRules.select(n);
        text = forms[category] ?? forms["other"] ?? Object.values(forms).pop() ?? text;
    }
    return fill(text.replace(/%n/g, String(n)), args);
}

// The readable name of a task method ("BuildModel" is "Build Mesh"), or the
// method itself when there is none.
export function taskName(method: string): string {
    return catalogue.tasks[method] || method;
}
