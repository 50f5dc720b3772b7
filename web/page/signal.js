// The panel "A signal".

export const panel = {
  id: 'signal',
  title: 'A signal',
  defaults: {},
  mount() {
    return { show() {}, hide() {} };
  },
};
