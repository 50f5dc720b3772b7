// The panel "An image".

export const panel = {
  id: 'image',
  title: 'An image',
  defaults: {},
  mount() {
    return { show() {}, hide() {} };
  },
};
