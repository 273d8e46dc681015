UPDATE tForms SET FontName = 'Liberation Sans';
